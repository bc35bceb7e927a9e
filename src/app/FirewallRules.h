#pragma once

/// Lets all traffic of this program through the Windows firewall: adds a rule for each direction unless rules of that
/// name are there already. Asks nobody and never fails: without the rights it only logs. Blocks for at most 3 s, and
/// for 5 s more a rule that is added. Elsewhere than on Windows there is no "cmd.exe" to run, and nothing happens.
void setupFirewallRules();
