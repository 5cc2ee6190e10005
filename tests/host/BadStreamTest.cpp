/// Streams of hosts that fail in the middle, carry little at once, or tell what isn't so.

#include "host/ProjectHost.h"
#include "support/FaultyStream.h"

namespace marnoth::test::bad_stream_test {
namespace {

std::vector<std::uint8_t> savedBytes(ProjectHost& host) {
    FaultyStream stream;
    EXPECT_EQ(host.filter->Save(&stream, TRUE), S_OK);
    return stream.bytes;
}

/// Saves into streams of which another call fails each time, until one succeeds.
TEST(BadStream, ThatFailsOneCallOfASaveFailsTheSave) {
    ProjectHost host;
    host.layLoop();
    const auto whole = savedBytes(host);
    HRESULT saved = E_FAIL;
    int call = 0;
    while (FAILED(saved)) {
        FaultyStream stream;
        stream.failAtCall = ++call;
        saved = host.filter->Save(&stream, FALSE);
        EXPECT_EQ(host.filter->IsDirty(), SUCCEEDED(saved) ? S_OK : S_FALSE) << "call " << call;
        if (SUCCEEDED(saved)) {
            EXPECT_EQ(stream.bytes, whole);
        }
        ASSERT_LT(stream.calls, 100000);
    }
    EXPECT_GT(call, 4);
    host.expectLoop();
}

TEST(BadStream, ThatFailsOneCallOfALoadFailsTheLoadOrGivesAll) {
    ProjectHost host;
    host.layLoop();
    const auto whole = savedBytes(host);
    int failures = 0;
    for (int call = 1;; ++call) {
        FaultyStream stream(whole);
        stream.failAtCall = call;
        const HRESULT loaded = host.filter->Load(&stream);
        if (SUCCEEDED(loaded)) {
            host.expectLoop();
            if (stream.calls < call) break;
        } else {
            ++failures;
            if (host.files() > 0) host.expectLoop();  // it failed before the project was reached
        }
    }
    EXPECT_GT(failures, 4);
}

TEST(BadStream, ThatCarriesLittleAtOnceCarriesAll) {
    ProjectHost first, second;
    first.layLoop();
    const auto whole = savedBytes(first);
    for (const ULONG most : {7u, 1000u}) {
        // The version's word is one that goes whole or not at all.
        FaultyStream target;
        target.mostAtOnce = most;
        EXPECT_EQ(first.filter->Save(&target, TRUE), most < 24 ? E_FAIL : S_OK);
        FaultyStream source(whole);
        source.mostAtOnce = most;
        EXPECT_EQ(second.filter->Load(&source), S_OK);
        second.expectLoop();
    }
}

/// Tells of a byte more than went, once the version's word has gone.
struct BoastingStream : FaultyStream {
    using FaultyStream::FaultyStream;

    HRESULT Read(void* to, ULONG count, ULONG* read) override {
        const HRESULT hr = FaultyStream::Read(to, count, read);
        if (read && position > 24) ++*read;
        return hr;
    }
    HRESULT Write(const void* from, ULONG count, ULONG* written) override {
        const HRESULT hr = FaultyStream::Write(from, count, written);
        if (written && position > 24) ++*written;
        return hr;
    }
};

TEST(BadStream, ThatTellsMoreThanWentIsRefused) {
    ProjectHost host;
    host.layLoop();
    const auto whole = savedBytes(host);
    BoastingStream target, source(whole);
    EXPECT_EQ(host.filter->Save(&target, TRUE), E_FAIL);
    host.expectLoop();
    EXPECT_EQ(host.filter->Load(&source), E_FAIL);
    host.expectEmpty();
}

TEST(BadStream, ThatStandsWhereNothingCanStandIsRefused) {
    ProjectHost host;
    host.layLoop();
    const auto whole = savedBytes(host);
    for (const std::uint64_t place :
         {std::uint64_t{1} << 63, std::uint64_t{INT64_MAX} - 100, ~std::uint64_t{0} - 1000}) {
        FaultyStream target, source(whole);
        target.toldPosition = source.toldPosition = place;
        EXPECT_TRUE(FAILED(host.filter->Save(&target, TRUE)));
        EXPECT_TRUE(FAILED(host.filter->Load(&source)));
        host.expectEmpty();
        host.layLoop();
    }
}

}  // namespace
}  // namespace marnoth::test::bad_stream_test
