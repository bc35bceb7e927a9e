#pragma once

class QTcpServer;

/// Qt lets a server accept nobody any more once it has failed to, as it does while this process may open no further
/// file. With this it says so and tries again after a second.
void keepAccepting(QTcpServer *server);
