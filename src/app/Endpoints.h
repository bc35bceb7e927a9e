#pragma once

#include <QString>

class Config;

/// The hosts that the program talks to when nothing else is configured. Built in by the CMake cache variables
/// EVOX_SERVER_HOST, EVOX_WEB_URL, EVOX_REGISTRY_URL and EVOX_MAIL_DOMAIN; tests make their own.
struct Endpoints
{
    QString serverHost;  ///< control server, host name or literal address
    QString webUrl;      ///< project web site, scheme and host without a trailing slash
    QString registryUrl; ///< callsign registry, scheme and host without a trailing slash
    QString mailDomain;  ///< domain of generated e-mail addresses

    [[nodiscard]] static const Endpoints &builtIn();
    /// The built-in ones, but the registry that the configuration names as "registry_url" when that is a web address.
    [[nodiscard]] static Endpoints configured(const Config &config);
};
