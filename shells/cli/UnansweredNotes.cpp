#include "shells/cli/UnansweredNotes.h"

#include <algorithm>

#include "shellkit/text/NoteNames.h"

namespace marnoth {

namespace {

bool hasKey(const PadAnswers& pad, const SynthEvent& note) {
    return pad.keys.lowKey <= note.note && note.note <= pad.keys.highKey;
}

bool answers(const PadAnswers& pad, const SynthEvent& note) {
    const bool isChannel = pad.channel == kAnyChannel || pad.channel == note.channel;
    return isChannel && hasKey(pad, note) && pad.keys.lowVelocity <= note.velocity &&
           note.velocity <= pad.keys.highVelocity;
}

/// Some notes: how many, and from which key to which.
struct Tally {
    int count = 0;
    std::int32_t lowest = 0;
    std::int32_t highest = 0;

    void add(std::int32_t key) {
        lowest = count == 0 ? key : std::min(lowest, key);
        highest = count == 0 ? key : std::max(highest, key);
        ++count;
    }

    std::string notes() const { return std::to_string(count) + (count == 1 ? " note" : " notes"); }
    bool isOneKey() const { return lowest == highest; }
    std::string keys() const { return noteName(lowest) + (isOneKey() ? "" : " to " + noteName(highest)); }
};

}  // namespace

std::vector<std::string> tellUnanswered(std::span<const SynthEvent> notes, std::span<const PadAnswers> pads) {
    Tally keyless;
    Tally others;
    for (const SynthEvent& note : notes) {
        const auto any = [&](auto fits) {
            return std::any_of(pads.begin(), pads.end(),
                               [&](const PadAnswers& pad) { return fits(pad, note); });
        };
        if (!any(answers)) (any(hasKey) ? others : keyless).add(note.note);
    }
    std::vector<std::string> sentences;
    if (keyless.count > 0)
        sentences.push_back(keyless.notes() + (keyless.isOneKey() ? " on a key" : " on keys") +
                            " that no pad answers: " + keyless.keys());
    if (others.count > 0)
        sentences.push_back(others.notes() + " whose channel or velocity no pad answers: " + others.keys());
    return sentences;
}

}  // namespace marnoth
