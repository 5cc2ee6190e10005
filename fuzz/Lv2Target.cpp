#include <bit>
#include <limits>

#include "fuzz/HostileHost.h"
#include "fuzz/InputBytes.h"
#include "fuzz/PluginSteps.h"
#include "fuzz/ProjectSeeds.h"
#include "platform/text/Text.h"
#include "shellkit/page/HeadlessPage.h"
#include "shells/lv2/page/ViewText.h"

namespace marnoth::fuzz {
namespace {

constexpr int kMostSteps = 64;
constexpr int kMostPages = 2;  // each takes as long as all else
constexpr std::uint32_t kMostFrames = 8000;

test::PluginWorld& world() {
    static test::PluginWorld world;
    return world;
}

LV2_URID urid(const std::string& uri) {
    return world().urid(uri);
}

LV2_URID nameOf(std::uint8_t number) {
    static const std::vector<LV2_URID> names = [] {
        std::vector<LV2_URID> all{0};
        for (const char* name : kStoryNames) all.push_back(urid(name));
        return all;
    }();
    return names[number % names.size()];
}

LV2_URID parameterOf(std::uint8_t number) {
    const std::size_t index = number % (kPads * kPadParameters);
    return urid(kPadUri + std::to_string(index / kPadParameters + 1) + ":" +
                kPadParameterNames[index % kPadParameters]);
}

const std::vector<std::pair<std::string, test::Bytes>>& projects() {
    static const auto seeds = projectSeeds();
    return seeds;
}

/// A sequence's events as they are written one behind the other.
class Events {
public:
    std::span<const std::uint8_t> bytes() const { return bytes_; }
    void clear() { bytes_.clear(); }
    void overwrite(std::size_t at, std::span<const std::uint8_t> with) {
        for (std::size_t i = 0; i < with.size() && at + i < bytes_.size(); ++i) bytes_[at + i] = with[i];
    }

    void add(std::int16_t frame, LV2_URID type, std::span<const std::uint8_t> body) {
        test::append(bytes_, std::int64_t{frame});
        addAtom(bytes_, type, body);
    }
    static void addAtom(Bytes& bytes, LV2_URID type, std::span<const std::uint8_t> body) {
        test::append(bytes, static_cast<std::uint32_t>(body.size()));
        test::append(bytes, type);
        bytes.insert(bytes.end(), body.begin(), body.end());
        bytes.resize((bytes.size() + 7) / 8 * 8);
    }
    static void addProperty(Bytes& object, LV2_URID key, LV2_URID type, std::span<const std::uint8_t> value) {
        test::append(object, key);
        test::append(object, std::uint32_t{0});
        addAtom(object, type, value);
    }
    static Bytes objectOf(LV2_URID type) {
        Bytes object;
        test::append(object, std::uint32_t{0});
        test::append(object, type);
        return object;
    }

private:
    Bytes bytes_;
};

/// An input as a host plays it.
class Story {
public:
    explicit Story(std::span<const std::uint8_t> bytes) : in_(bytes), host_(world(), in_.byte() & 1) {}

    void play() {
        for (int step = 0; step < kMostSteps && !in_.isEmpty(); ++step)
            take(static_cast<PluginStep>(in_.byte() % static_cast<int>(PluginStep::count)));
        run(64, 0, 4096);
    }

private:
    void take(PluginStep step) {
        switch (step) {
            case PluginStep::run: {
                const std::uint32_t frames = in_.number<std::uint16_t>() % 2000;
                const std::uint8_t leftOut = in_.byte();
                return run(frames, leftOut, 16u * in_.byte());
            }
            case PluginStep::midi:
                return addMidi();
            case PluginStep::atom:
                return addAtom();
            case PluginStep::object:
                return addObject();
            case PluginStep::set:
                return addSet();
            case PluginStep::overwrite: {
                const auto at = in_.number<std::uint16_t>();
                return events_.overwrite(at, in_.take(4));
            }
            case PluginStep::connect:
                host_.connected = in_.number<std::uint32_t>();
                return;
            case PluginStep::activate:
                return host_.activate();
            case PluginStep::rate:
                return setRate();
            case PluginStep::save:
                return save();
            case PluginStep::restore:
                return restore();
            case PluginStep::names:
                return names();
            case PluginStep::page:
                return openPage();
            case PluginStep::count:
                return;
        }
    }

    void run(std::uint32_t frames, std::size_t leftOut, std::uint32_t room) {
        frames = std::min(frames, kMostFrames - played_);
        played_ += frames;
        const auto events = events_.bytes();
        host_.run(events.first(events.size() - std::min(leftOut, events.size())), frames, room);
        events_.clear();
    }

    void addMidi() {
        const auto frame = in_.number<std::int16_t>();
        const std::size_t length = in_.byte();
        events_.add(frame, urid(LV2_MIDI__MidiEvent), in_.take(length));
    }
    void addAtom() {
        const auto frame = in_.number<std::int16_t>();
        const LV2_URID type = nameOf(in_.byte());
        const std::size_t length = in_.byte();
        events_.add(frame, type, in_.take(length));
    }
    void addObject() {
        const auto frame = in_.number<std::int16_t>();
        Bytes object = Events::objectOf(nameOf(in_.byte()));
        for (int properties = in_.byte() % 8; properties > 0; --properties) {
            const LV2_URID key = nameOf(in_.byte());
            const LV2_URID type = nameOf(in_.byte());
            const std::size_t length = in_.byte();
            Events::addProperty(object, key, type, in_.take(length));
        }
        events_.add(frame, urid(LV2_ATOM__Object), object);
    }
    void addSet() {
        const auto frame = in_.number<std::int16_t>();
        const auto property = std::bit_cast<std::array<std::uint8_t, 4>>(parameterOf(in_.byte()));
        const LV2_URID type = nameOf(in_.byte());
        const auto value = in_.number<std::array<std::uint8_t, 8>>();
        const bool isLong = type == urid(LV2_ATOM__Double) || type == urid(LV2_ATOM__Long);
        Bytes object = Events::objectOf(urid(LV2_PATCH__Set));
        Events::addProperty(object, urid(LV2_PATCH__property), urid(LV2_ATOM__URID), property);
        Events::addProperty(object, urid(LV2_PATCH__value), type, std::span(value).first(isLong ? 8 : 4));
        events_.add(frame, urid(LV2_ATOM__Object), object);
    }

    void setRate() {
        using Limits = std::numeric_limits<double>;
        constexpr std::array<double, 12> kRates{
            22050, 8000, 44100, 48000, 1, 0.4, 0, -1, 1e300, Limits::infinity(), 11025, Limits::quiet_NaN()};
        const double rate = kRates[in_.byte() % kRates.size()];
        const LV2_URID type = in_.byte() % 4 ? urid(LV2_ATOM__Double) : urid(LV2_ATOM__Float);
        host_.setRate(type, std::bit_cast<std::array<std::uint8_t, 8>>(rate));
        host_.activate();
    }

    void save() {
        State state;
        state.refuses = in_.byte() % 5;
        const bool hasFiles = in_.byte() & 1;
        const bool isSaved = host_.save(state, hasFiles) == LV2_STATE_SUCCESS;
        const auto kept = host_.kept();
        require(isSaved == (state.refuses == 0 || state.refuses > static_cast<int>(kept.size())),
                "a save fails where the host has no room");
        require(kept == host_.kept(), "what hasn't changed is the same bytes");
    }

    void restore() {
        State state;
        const std::size_t which = in_.byte() % projects().size();
        Bytes project = projects()[which].second;
        const std::uint8_t faults = in_.byte();
        const bool isEdited = damage(project, faults);
        describe(state, faults, project);
        describeView(state);
        const auto before = host_.kept();
        const LV2_State_Status status = host_.restore(state, faults & kInFile);
        // The last one is behind other bytes, as no file is.
        const bool isWhole = (faults & ~kInFile) == 0 && !isEdited && which + 1 < projects().size();
        require(status != LV2_STATE_SUCCESS ||
                    !(faults & (kNoVersion | kNoProject | kNewerVersion | kOddVersion)),
                "a state that isn't one is refused");
        require(!isWhole || status == LV2_STATE_SUCCESS, "a good state is taken");
        if (status != LV2_STATE_SUCCESS)
            return require(host_.kept() == before, "a refused state leaves everything as it is");
        require(viewOf(host_.kept()) == viewOf(state.properties), "the page will be as it was left");
        if (!isWhole) host_.isTame = false;
    }
    /// Cuts and overwrites it. Whether anything was to be overwritten.
    bool damage(Bytes& project, std::uint8_t faults) {
        const std::size_t kept = in_.number<std::uint16_t>();
        if (faults & kCut) project.resize(std::min(kept, project.size()));
        const int edits = in_.byte() % 8;
        for (int edit = 0; edit < edits; ++edit) {
            const std::size_t at = in_.number<std::uint16_t>();
            const std::uint8_t byte = in_.byte();
            if (at < project.size()) project[at] = byte;
        }
        return edits > 0;
    }
    void describeView(State& state) {
        const auto view = in_.take(in_.byte());
        if (!view.empty())
            state.properties[urid(kViewUri)] = {{view.begin(), view.end()}, urid(LV2_ATOM__String)};
    }
    static std::string viewOf(const std::map<LV2_URID, State::Property>& properties) {
        const auto found = properties.find(urid(kViewUri));
        if (found == properties.end()) return {};
        const auto& bytes = found->second.bytes;
        return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
    }
    void describe(State& state, std::uint8_t faults, const Bytes& project) {
        std::int32_t version = faults & kNewerVersion ? 2 : 1;
        Bytes word;
        test::append(word, version);
        if (faults & kOddVersion) word.push_back(0);
        if (!(faults & kNoVersion)) state.properties[urid(kStateVersionUri)] = {word, urid(LV2_ATOM__Int)};
        if (faults & kNoProject) return;
        State::Property& stored = state.properties[urid(kProjectUri)];
        stored = {project, urid(LV2_ATOM__Chunk)};
        if (faults & kInFile) {
            host_.file().fill(project);
            stored = {{'a', 0}, urid(LV2_ATOM__Path)};
            state.knowsPath = !(faults & kNoFile);
        }
        if (faults & kOddProject) stored.type = urid(LV2_ATOM__Int);
    }

    void names() {
        const std::string text = host_.names();
        require(isUtf8(text), "names are UTF-8");
        for (const char byte : text) require(byte == '\n' || (byte >= ' ' || byte < 0), "names are text");
    }

    /// As the page's binary does, in a window without a screen.
    void openPage() {
        if (++pages_ > kMostPages) return;
        HeadlessPage page(host_.plugin().sampler(), "");
        page.page().show(leftPageIn(viewOf(host_.kept())).view);
        page.picture();
        const LeftPage left{page.page().keptView(), {}};
        require(leftPageIn(textOf(left)) == left, "how a page was left can be read again");
    }

    InputBytes in_;
    HostileHost host_;
    Events events_;
    std::uint32_t played_ = 0;
    int pages_ = 0;
};

}  // namespace
}  // namespace marnoth::fuzz

/// An instance of a plug-in with whatever a host sends it and has kept of it, in any order.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    marnoth::fuzz::Story({data, size}).play();
    marnoth::fuzz::world().log.clear();
    return 0;
}
