#include <gtest/gtest.h>

#include <cstdlib>

#include "lv2/PluginHost.h"
#include "shells/lv2/NoteNames.h"
#include "support/RealTimeGuard.h"
#include "support/WaveFile.h"

namespace marnoth::test::note_names_test {
namespace {

/// What stands between quotes behind `before`, from `from` on; empty where that isn't there.
std::string quotedBehind(const std::string& text, const std::string& before, std::size_t from = 0) {
    const std::size_t at = text.find(before, from);
    if (at == text.npos) return {};
    const std::size_t begin = at + before.size();
    return text.substr(begin, text.find('"', begin) - begin);
}

/// A key's name as a host finds it: by the channel's set, that set's list, and the list's note.
std::string nameOf(const std::string& document, int channel, int key) {
    const std::string set = quotedBehind(
        document, "<ChannelNameSetAssign Channel=\"" + std::to_string(channel) + "\" NameSet=\"");
    const std::string list = quotedBehind(document, "<UsesNoteNameList Name=\"",
                                          document.find("<ChannelNameSet Name=\"" + set + '"'));
    const std::size_t begin = document.find("<NoteNameList Name=\"" + list + '"');
    const std::size_t end = document.find("</NoteNameList>", begin);
    return quotedBehind(document.substr(begin, end - begin),
                        "<Note Number=\"" + std::to_string(key) + "\" Name=\"");
}

NamedPad padOn(int pad, int key, const std::string& loop) {
    return {.pad = pad, .lowKey = key, .highKey = key, .rootKey = key, .channel = -1, .loop = loop};
}

std::string documentOf(const std::vector<NamedPad>& pads) {
    return noteNameDocument("model", pads);
}

TEST(NoteNames, AreThoseOfThePadsBesideTheirNumbers) {
    const std::string document = documentOf({padOn(0, 60, "drums"), padOn(9, 76, "bass")});
    for (int channel = 1; channel <= 16; ++channel) {
        EXPECT_EQ(nameOf(document, channel, 60), "1 drums");
        EXPECT_EQ(nameOf(document, channel, 76), "10 bass");
        EXPECT_EQ(nameOf(document, channel, 61), "");
    }
    EXPECT_EQ(quotedBehind(document, "<Model>").substr(0, 13), "model</Model>");
}

TEST(NoteNames, OfAKeyThatPlaysSeveralPadsAreAllTheirs) {
    EXPECT_EQ(nameOf(documentOf({padOn(0, 60, "drums"), padOn(2, 60, "bass")}), 1, 60), "1 drums, 3 bass");
}

TEST(NoteNames, SayHowFarAKeyTransposes) {
    NamedPad pad = padOn(1, 60, "bass");
    pad.lowKey = 0;
    pad.highKey = 127;
    const std::string document = documentOf({pad});
    EXPECT_EQ(nameOf(document, 1, 60), "2 bass");
    EXPECT_EQ(nameOf(document, 1, 63), "2 bass +3");
    EXPECT_EQ(nameOf(document, 1, 0), "2 bass -60");
    EXPECT_EQ(nameOf(document, 1, 127), "2 bass +67");
}

TEST(NoteNames, AreThoseOfPadsThatAnswerTheChannel) {
    NamedPad third = padOn(4, 60, "third");
    third.channel = 2;
    const std::string document = documentOf({padOn(0, 60, "all"), third});
    EXPECT_EQ(nameOf(document, 1, 60), "1 all");
    EXPECT_EQ(nameOf(document, 3, 60), "1 all, 5 third");
    EXPECT_EQ(nameOf(document, 16, 60), "1 all");
}

TEST(NoteNames, AreGoodTextWhateverTheFilesAreCalled) {
    const auto shown = [](const std::string& loop) {
        return nameOf(documentOf({padOn(0, 60, loop)}), 1, 60);
    };
    EXPECT_EQ(shown("<a> & \"b\""), "1 &lt;a&gt; &amp; &quot;b&quot;");
    EXPECT_EQ(shown("tab\tline\n\x7F\x01\xC2\x85"
                    "end"),
              "1 tablineend");
    EXPECT_EQ(shown("Trommel\xC3\xB6\xF0\x9F\xA5\x81"), "1 Trommel\xC3\xB6\xF0\x9F\xA5\x81");
    EXPECT_EQ(shown("cut\xE2\x82"), "1 cut\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(shown("none\xEF\xBF\xBF"), "1 none");
    EXPECT_EQ(shown(""), "1");
}

TEST(NoteNames, OfAnyKeysThatAProjectHoldsStandOnKeysThereAre) {
    NamedPad pad = padOn(0, 60, "far");
    pad.lowKey = pad.rootKey = INT32_MIN;
    pad.highKey = INT32_MAX;
    const std::string document = documentOf({pad});
    EXPECT_EQ(nameOf(document, 1, 0), "1 far +2147483648");
    EXPECT_EQ(document.find("Number=\"-1\""), document.npos);
    EXPECT_EQ(document.find("Number=\"128\""), document.npos);
}

/// A host with a worker, which counts how often it is told to read the names anew.
class NamingHost {
public:
    IGrooveSampler& sampler() { return host_.sampler(); }
    std::string names() {
        return owned(host_.extension<MidnamInterface>(kMidnamInterfaceUri).midnam(host_.instance()));
    }
    std::string model() {
        return owned(host_.extension<MidnamInterface>(kMidnamInterfaceUri).model(host_.instance()));
    }
    /// A tenth of a second, and what the worker makes of it. How often the host was told.
    int updates() {
        const auto& worker = host_.extension<LV2_Worker_Interface>(LV2_WORKER__interface);
        told_ = 0;
        host_.block(4800);
        for (; asked_ > 0; --asked_) worker.work(host_.instance(), responded, this, 0, nullptr);
        for (; answers_ > 0; --answers_) worker.work_response(host_.instance(), 0, nullptr);
        return told_;
    }
    void load(int pad, const std::string& title) {
        const TempPath file = WaveFile().frames(500, [](std::int64_t, int) { return 0.1; }).writeTemp();
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        ASSERT_EQ(sampler().LoadFileToPad(pad, title.c_str(), file.c_str(), &bin, &status), S_OK);
    }
    PluginHost& host() { return host_; }

private:
    std::string owned(char* text) {
        EXPECT_NE(text, nullptr);
        const std::string copy = text;
        host_.extension<MidnamInterface>(kMidnamInterfaceUri).free(text);
        return copy;
    }
    static void updated(void* handle) { ++static_cast<NamingHost*>(handle)->told_; }
    static LV2_Worker_Status scheduled(LV2_Worker_Schedule_Handle handle, std::uint32_t, const void*) {
        ++static_cast<NamingHost*>(handle)->asked_;
        return LV2_WORKER_SUCCESS;
    }
    static LV2_Worker_Status responded(LV2_Worker_Respond_Handle handle, std::uint32_t, const void*) {
        ++static_cast<NamingHost*>(handle)->answers_;
        return LV2_WORKER_SUCCESS;
    }

    int told_ = 0;
    int asked_ = 0;
    int answers_ = 0;
    MidnamHost midnam_{this, updated};
    LV2_Worker_Schedule schedule_{this, scheduled};
    LV2_Feature midnamFeature_{kMidnamUpdateUri, &midnam_};
    LV2_Feature workerFeature_{LV2_WORKER__schedule, &schedule_};
    PluginHost host_{0, PluginHost::kRate, {&midnamFeature_, &workerFeature_}};
};

TEST(NoteNames, FollowWhatIsLoaded) {
    NamingHost it;
    EXPECT_EQ(nameOf(it.names(), 1, 60), "") << "the pad is empty";
    EXPECT_EQ(it.updates(), 0);
    it.load(0, "drums.wav");
    EXPECT_EQ(nameOf(it.names(), 1, 60), "1 drums");
    EXPECT_EQ(it.updates(), 1);
    EXPECT_EQ(it.updates(), 0);
    KeyMapRecord key{
        .pad = 0, .lowKey = 40, .highKey = 40, .rootKey = 40, .lowVelocity = 0, .highVelocity = 127};
    it.sampler().SetKeyMapEntry(&key);
    EXPECT_EQ(it.updates(), 1);
    EXPECT_EQ(nameOf(it.names(), 1, 40), "1 drums");
    EXPECT_EQ(nameOf(it.names(), 1, 60), "");
    key.highVelocity = 0;
    it.sampler().SetKeyMapEntry(&key);
    EXPECT_EQ(nameOf(it.names(), 1, 40), "") << "no note is as soft";
    it.sampler().SetPadChannel(0, 3);
    it.sampler().RemoveBinFile(0);
    EXPECT_EQ(it.updates(), 1);
}

TEST(NoteNames, AreNoNewsWhileAHostAutomates) {
    NamingHost it;
    it.load(0, "drums.wav");
    EXPECT_EQ(it.updates(), 1);
    const LV2_URID level = it.host().world.urid(std::string(kPadUri) + "1:level");
    for (int i = 0; i < 10; ++i) {
        it.host().events().set(0, level, -0.5f * static_cast<float>(i + 1));
        EXPECT_EQ(it.updates(), 0);
    }
}

TEST(NoteNames, OfTwoInstancesAreOfTwoModels) {
    NamingHost one;
    NamingHost other;
    EXPECT_NE(one.model(), other.model());
    EXPECT_NE(one.names().find("<Model>" + one.model() + "</Model>"), std::string::npos);
}

TEST(NoteNames, TakeNothingFromTheThreadThatRenders) {
    NamingHost it;
    it.load(0, "drums.wav");
    it.host().prepare(4800);
    RealTimeGuard guard;
    it.host().descriptor().run(it.host().instance(), 4800);
    const auto offences = guard.finish();
    it.host().clear();
    EXPECT_EQ(offences.allocations, 0);
    EXPECT_EQ(offences.frees, 0);
}

}  // namespace
}  // namespace marnoth::test::note_names_test
