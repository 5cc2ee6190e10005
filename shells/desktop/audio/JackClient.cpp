#include "shells/desktop/audio/JackClient.h"

#include <stdexcept>

namespace marnoth {

JackClient::JackClient(const JackLibrary& jack, const std::string& name)
    : jack_(jack), handle_(jack.client_open(name.c_str(), JackNoStartServer, nullptr)) {
    if (!handle_) throw std::runtime_error("No JACK server runs.");
}

std::vector<std::string> JackClient::ports(const char* type, unsigned long flags) const {
    std::vector<std::string> names;
    const char** const ports = jack_.get_ports(handle_, nullptr, type, flags);
    if (!ports) return names;
    for (const char** port = ports; *port; ++port) names.emplace_back(*port);
    jack_.free(ports);
    return names;
}

JackActivation::JackActivation(const JackLibrary& jack, jack_client_t* client)
    : jack_(jack), client_(client) {
    if (jack_.activate(client_) != 0) throw std::runtime_error("JACK doesn't start us.");
}

}  // namespace marnoth
