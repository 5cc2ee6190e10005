#pragma once

#include <string>
#include <vector>

#include "shells/desktop/audio/JackLibrary.h"

namespace marnoth {

/// A client of a running JACK server, from when it was made until it is destroyed. Any one thread at a time.
class JackClient {
public:
    /// Throws `std::runtime_error`, with a sentence for the user, when no server runs. `jack` outlives it.
    JackClient(const JackLibrary& jack, const std::string& name);
    ~JackClient() { jack_.client_close(handle_); }
    JackClient(const JackClient&) = delete;
    JackClient& operator=(const JackClient&) = delete;

    jack_client_t* handle() const { return handle_; }
    /// The names of ports, physical ones first, as the server lists them.
    std::vector<std::string> ports(const char* type, unsigned long flags) const;

private:
    const JackLibrary& jack_;
    jack_client_t* const handle_;
};

/// While it lives JACK calls; its end waits for the call that is under way. The connection may be in use for
/// a moment yet by who asks for devices.
class JackActivation {
public:
    /// Throws `std::runtime_error`, with a sentence for the user, when JACK refuses. Both outlive it.
    JackActivation(const JackLibrary& jack, jack_client_t* client);
    ~JackActivation() { jack_.deactivate(client_); }
    JackActivation(const JackActivation&) = delete;
    JackActivation& operator=(const JackActivation&) = delete;

private:
    const JackLibrary& jack_;
    jack_client_t* const client_;
};

}  // namespace marnoth
