#pragma once

#include "net/protocol/Commands.h"

#include <QString>
#include <QStringList>

#include <functional>

class Prompts;
struct GatewayData;

/// The exchange that makes a new gateway known to the server, on a short-lived connection of its own.
namespace GatewayRegistration {

/// Starts a program detached from this one; false when it cannot be started.
using Start = std::function<bool(const QString &program, const QStringList &arguments)>;

/// What is sent for the data: fields that may be empty get their stand-ins.
[[nodiscard]] Commands::Registration recordOf(const GatewayData &data, const QString &mailDomain);
/// What a refusing answer gives as its reason: the text after the first "|" of the line that refuses, or of the whole
/// answer; all of it where there is no "|".
[[nodiscard]] QString reasonIn(const QString &answer);

} // namespace GatewayRegistration

/// Registers the gateway with the server that the data names. Blocks without running the event loop, for 16 s and a
/// name lookup at most. On
/// success completes the setup in the configuration, tells the operator and starts this program anew; every failure is
/// told and leaves the setup uncompleted.
[[nodiscard]] bool registerGateway(const GatewayData &data, const QString &mailDomain, Prompts &prompts,
                                   const GatewayRegistration::Start &start);
