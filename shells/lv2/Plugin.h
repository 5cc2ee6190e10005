#pragma once

#include <lv2/atom/forge.h>

#include <array>
#include <cstdint>

#include "hostkit/LiveHost.h"
#include "hostkit/SeparateOutputs.h"
#include "shells/lv2/Atoms.h"
#include "shells/lv2/HostFeatures.h"
#include "shells/lv2/HostPosition.h"
#include "shells/lv2/NoteNames.h"
#include "shells/lv2/PadParameters.h"
#include "shells/lv2/PluginInstance.h"
#include "shells/lv2/PluginState.h"
#include "shells/lv2/RecentNotes.h"
#include "shells/lv2/StateChanges.h"
#include "shells/lv2/Urids.h"

namespace marnoth {

/// The numbers of the ports, as the bundle's files tell them.
enum PluginPort : std::uint32_t {
    kEventsIn = 0,   ///< MIDI, the host's position, and what it sets of the pads
    kEventsOut = 1,  ///< what others have changed of the pads
    kFreeWheeling = 2,
    kFirstAudioOut = 3,  ///< the mix's left side, its right side, and where there are more, pad by pad
};

/// An instance of a plug-in: the instrument with what its host sends it.
///
/// Threads as hosts keep them: `run` is the one that renders, where nothing allocates; `save` and `restore`
/// are for any other; everything else is never called at once with anything.
class Plugin final : public PluginInstance {
public:
    /// Renders `outputs` of the instrument, 0 the mix, 1 to 16 the channels, at `rate` frames per second.
    /// `std::runtime_error` where that can't be.
    Plugin(double rate, std::span<const int> outputs, const LV2_URID_Map& map,
           const LV2_Feature* const* features);

    /// Where a port's data is from now on; null for none.
    void connect(std::uint32_t port, void* data);
    /// For the next time that it is activated.
    void setRate(double rate) { rate_ = rate; }
    double rate() const { return rate_; }
    /// Nothing sounds any more. At another rate the project is loaded anew.
    void activate();
    void run(std::uint32_t frames);

    /// The state, as `PluginState` has it.
    LV2_State_Status save(LV2_State_Store_Function store, LV2_State_Handle handle,
                          const LV2_Feature* const* features);
    LV2_State_Status restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                             const LV2_Feature* const* features);
    NoteNames& noteNames() { return noteNames_; }
    const Urids& urids() const { return urids_; }

    // PluginInstance.
    IGrooveSampler& sampler() override { return host_.sampler(); }
    PageMemory& pages() override { return pages_; }
    WavePlayer& listening() override { return listening_; }

private:
    bool prepare();
    void takeEvents(std::int32_t frames);
    void take(std::int32_t frame, const AtomView& event);
    void takeMidi(std::int32_t frame, std::span<const std::uint8_t> bytes);
    void takePosition(std::int32_t frame, const AtomView& object);
    void takeObject(std::int32_t frame, LV2_URID type, const AtomView& object);
    void setParameter(std::int32_t frame, LV2_URID property, const AtomView& value);
    void askedFor(const AtomView& get);
    /// Renders from where the block has come to.
    void renderTo(std::int32_t frame);
    void writeEvents();
    bool writeParameter(std::size_t index, float value);
    void writeStateChanged();
    /// Whether this many bytes more find room among the events that go out.
    bool hasRoomFor(std::uint32_t bytes) const { return forge_.size - forge_.offset >= bytes; }

    Urids urids_;
    HostLog log_;
    LiveHost host_;
    PageMemory pages_;
    PluginState state_{host_, pages_, urids_, log_};
    PadParameters parameters_;
    StateChanges changes_{host_.sampler()};
    bool owesStateChanged_ = false;  ///< the host is to be told yet
    NoteNames noteNames_;
    LV2_Atom_Forge forge_{};
    std::span<const int> outputs_;
    double rate_;
    std::uint32_t connectedRate_ = 0;  ///< 0 before the first connection
    HostPosition position_;
    RecentNotes recentNotes_;
    const LV2_Atom_Sequence* eventsIn_ = nullptr;
    LV2_Atom_Sequence* eventsOut_ = nullptr;
    std::array<float*, SeparateOutputs::kPointers> audio_{};
    std::int32_t done_ = 0;  ///< frames of the present block
    WavePlayer listening_;
};

}  // namespace marnoth
