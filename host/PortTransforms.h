#pragma once

#include <cstdint>
#include <map>

#include "host/PortTransform.h"

namespace marnoth {

/// The transform of each input port that the host has named: any number at all. A port that it hasn't is left
/// as it is. Used under the owner's lock; entries are made outside of it.
class PortTransforms {
    using Map = std::map<std::int32_t, PortTransform>;

public:
    /// A port that may not be known yet, with its storage.
    using Entry = Map::node_type;
    static Entry makeEntry(std::int32_t port);

    /// The port's transform, which is the one of `entry` if it had none. Otherwise `entry` stays as it is, to
    /// be freed outside of the lock.
    PortTransform& add(Entry& entry);

    /// Moves `event` as its port wants it; false when it is to be dropped. Makes no entry: a mute event
    /// changes only a port that has one.
    bool apply(std::int32_t port, SynthEvent& event);

private:
    Map map_;
};

}  // namespace marnoth
