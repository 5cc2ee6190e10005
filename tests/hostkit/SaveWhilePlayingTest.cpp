#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <random>
#include <vector>

#include "hostkit/Busy.h"
#include "hostkit/LiveRig.h"
#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "platform/com/RefPtr.h"
#include "seam/IMarnothOptions.h"
#include "shellkit/page/HeadlessPage.h"

namespace marnoth::test::save_while_playing_test {
namespace {

constexpr std::chrono::seconds kDuration{3};
/// A slow or busy machine gets longer for the least of each.
constexpr std::chrono::seconds kPatience{60};
constexpr int kLeastRounds = 20;

/// A user who plays.
void play(LiveHost& host, int round) {
    const auto key = static_cast<std::uint8_t>(48 + round % 16);
    host.send(0x90, key, 100);
    host.send(0x80, key, 0);
    if (round % 11 == 0) round % 2 ? host.play() : host.stop();
}

/// The page on its own thread, which is that of its window: a user who drags and clicks wherever it may be,
/// while its timer runs and it is painted.
class PageUser {
public:
    explicit PageUser(IUnknown& instrument) : page_(instrument, {}) {}

    void work(int round) {
        HeadlessWindow& window = page_.window();
        window.tick();
        window.press(anywhere());
        window.move(anywhere());
        window.release(anywhere());
        if (round % 3 == 0) window.rightClick(anywhere());
        if (round % 5 == 0) window.doubleClick(anywhere());
        EXPECT_GT(page_.picture().width(), 0);
        window.takeLog();
    }

private:
    Point anywhere() { return {static_cast<int>(random_() % 600), static_cast<int>(random_() % 553)}; }

    std::mt19937 random_{5};
    HeadlessPage page_;
};

/// A host that keeps the instrument's state, in a project of its own and in a file.
void save(LiveHost& host, const TempPath& file, int round) {
    if (round % 2) {
        EXPECT_EQ(host.sampler().SaveProject(0, file.c_str()), S_OK);
        return;
    }
    const RefPtr<MemoryStream> state = makeObject<MemoryStream>();
    EXPECT_EQ(host.save(*state), S_OK);
    EXPECT_GT(state->bytes().size(), 24u) << "behind the version there is a project";
}

/// Loads of all kinds, all of which find what they need.
class Loader {
public:
    Loader(LiveHost& host, const std::vector<TempPath>& files) : host_(host), files_(files) {
        EXPECT_EQ(host.sampler().SaveProject(0, project_.c_str()), S_OK);
        const RefPtr<MemoryStream> state = makeObject<MemoryStream>();
        EXPECT_EQ(host.save(*state), S_OK);
        state_ = state->bytes();
        EXPECT_EQ(host.sampler().QueryInterface(IID_IMarnothOptions, options_.putVoid()), S_OK);
    }

    void load(int round) {
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        const char* const file = files_[static_cast<std::size_t>(round) % files_.size()].c_str();
        switch (round % 8) {
            case 0:
                EXPECT_EQ(host_.sampler().LoadProject(project_.c_str()), S_OK);
                break;
            case 1:
            case 2:
                EXPECT_EQ(host_.sampler().LoadFileToPad(round % kPads, "file", file, &bin, &status), S_OK);
                break;
            case 3:
                EXPECT_EQ(host_.sampler().LoadFileToBin("file", file, &bin, &status), S_OK);
                break;
            case 4:
                host_.sampler().RemoveBinFile(round % 3);
                break;
            case 5:
                EXPECT_EQ(options_->SetSteady(round / 8 % 2), S_OK);
                break;
            default:
                EXPECT_EQ(host_.load(*makeObject<MemoryStream>(state_)), S_OK);
        }
    }

private:
    LiveHost& host_;
    const std::vector<TempPath>& files_;
    const TempPath project_{".mrn"};
    std::vector<std::uint8_t> state_;
    RefPtr<IMarnothOptions> options_;
};

TEST(EditWhilePlaying, SavesLoadsAndThePageDisturbNoLiveBlock) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    const TempPath saved{".mrn"};
    LiveRig rig({0, 1, 16});
    layPads(rig.host.sampler(), files);
    Loader loader(rig.host, files);
    Busy player([&](int round) { play(rig.host, round); });
    Busy saver([&](int round) { save(rig.host, saved, round); });
    Busy loading([&](int round) { loader.load(round); });
    std::optional<PageUser> user;
    Busy page([&](int round) {
        if (!user) user.emplace(rig.host.sampler());
        user->work(round);
    });
    std::mt19937 random(3);
    const auto begin = std::chrono::steady_clock::now();
    const auto lasts = [begin](std::chrono::seconds time) {
        return std::chrono::steady_clock::now() - begin < time;
    };
    const auto isEnough = [&] {
        return std::min({saver.rounds(), loading.rounds(), page.rounds()}) >= kLeastRounds &&
               rig.peakFrom(0) > 0.1f;
    };
    while (lasts(kDuration) || (lasts(kPatience) && !isEnough()))
        rig.block(static_cast<std::int32_t>(random() % LiveRig::kMost));
    EXPECT_TRUE(isEnough());
    player.finish();
    saver.finish();
    loading.finish();
    page.finish();
    user.reset();
    bool allFinite = true;
    for (float sample : rig.audio[0]) allFinite = allFinite && std::isfinite(sample);
    EXPECT_TRUE(allFinite);
    EXPECT_EQ(rig.host.sampler().SaveProject(0, saved.c_str()), S_OK);
    EXPECT_EQ(rig.host.sampler().LoadProject(saved.c_str()), S_OK);
}

}  // namespace
}  // namespace marnoth::test::save_while_playing_test
