#include "host/FilterHost.h"
#include "support/EventLists.h"
#include "support/WaveFile.h"

namespace marnoth::test::sample_rate_test {
namespace {

/// Half a second of stereo with a tempo, one grain to the beat.
TempPath loop() {
    return WaveFile()
        .channels(2)
        .frames(22050, [](std::int64_t i, int) { return std::sin(0.05 * static_cast<double>(i)); })
        .acid({.beats = 1})
        .writeTemp();
}

void playSome(FilterHost& host, std::int32_t file) {
    IGrooveSampler& sampler = *host.filter;
    sampler.LoadPadFromBin(0, file);
    sampler.LoadPadFromBin(1, file);
    sampler.SetPadSynced(1, 0);
    sampler.AuditionPad(1, -1);
    sampler.AuditionBinFile(file, 0);
    for (std::int32_t ticks : {0, 960}) {
        host.filter->StartPlayback(ticks);
        EventList notes{note(ticks, 60), note(ticks, 62, 100), note(ticks + 1, 64, 1),
                        noteOff(ticks + 400, 60)};
        host.filter->QueueEvents(0, 0, 0, &notes);
        for (int block = 0; block < 8; ++block) EXPECT_EQ(host.send(512, 0.1f), S_OK);
    }
    host.filter->StopPlayback();
    RawEventList live{midi(0, 0x90, 60, 100), midi(10, 0x80, 60, 0)};
    host.filter->QueueRawInput(0, &live);
    for (int block = 0; block < 8; ++block) EXPECT_EQ(host.send(512), S_OK);
}

TEST(SampleRate, OfNothingOrBeyondReasonDoesNoHarm) {
    const TempPath path = loop();
    for (const bool converter : {false, true}) {
        for (const DWORD rate : {0u, 1u, 7u, 999u, 3000000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            FilterHost host;
            host.context.hasTimeConverter = converter;
            host.attach();
            host.start({0, 1}, rate);
            std::int32_t file = 0;
            std::uint32_t status = 0;
            host.filter->LoadFileToBin("Loop", path.c_str(), &file, &status);
            playSome(host, file);
            EXPECT_EQ(host.sink(0).deliveries.size(), 24u);
        }
    }
}

}  // namespace
}  // namespace marnoth::test::sample_rate_test
