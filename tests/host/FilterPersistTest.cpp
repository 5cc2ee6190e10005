/// The instrument's project in a stream of its host: the version word, and what the engine writes behind it.

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <new>
#include <stdexcept>
#include <string>

#include "host/ProjectHost.h"
#include "seam/ClassIds.h"
#include "support/FaultyStream.h"

namespace marnoth::test::filter_persist_test {
namespace {

constexpr std::size_t kWordBytes = 24;

RefPtr<IPersistStream> persistence(FilterHost& host) {
    RefPtr<IPersistStream> found;
    EXPECT_EQ(host.owner->QueryInterface(IID_IPersistStream, found.putVoid()), S_OK);
    return found;
}

/// The word of `text`, which has up to 12 characters, as it stands in a stream.
std::vector<std::uint8_t> wordOf(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    for (const char unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit));
        bytes.push_back(0);
    }
    return bytes;
}

/// An instrument whose engine writes and reads 4 bytes.
struct FourByteHost : FilterHost {
    FourByteHost() {
        filter->onSaveState = [](IStream* stream) { return stream->Write("ABCD", 4, nullptr); };
        filter->onLoadState = [this](IStream* stream) {
            char bytes[5]{};
            const HRESULT hr = stream->Read(bytes, 4, nullptr);
            loaded = bytes;
            return hr;
        };
    }
    std::string loaded;
};

TEST(Persistence, IsAFaceOfTheOneObject) {
    FilterHost host;
    const auto stream = persistence(host);
    CLSID id{};
    EXPECT_EQ(stream->GetClassID(&id), S_OK);
    EXPECT_TRUE(id == CLSID_Marnoth);
    EXPECT_EQ(stream->GetClassID(nullptr), E_POINTER);
    RefPtr<IUnknown> identity, fromBase, fromStream;
    EXPECT_EQ(stream->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    EXPECT_TRUE(identity == host.owner);
    EXPECT_EQ(stream->QueryInterface(IID_IPersist, fromStream.putVoid()), S_OK);
    EXPECT_EQ(host.owner->QueryInterface(IID_IPersist, fromBase.putVoid()), S_OK);
    EXPECT_TRUE(fromBase == fromStream);
}

TEST(Persistence, PromisesTheBytesOfTheVersionWordAlone) {
    FilterHost host;
    ULARGE_INTEGER most{};
    EXPECT_EQ(host.filter->GetSizeMax(&most), S_OK);
    EXPECT_EQ(most.QuadPart, 24u);
    EXPECT_EQ(host.filter->GetSizeMax(nullptr), E_POINTER);
}

TEST(Persistence, WritesElevenZerosAndABlankInFrontOfTheProject) {
    FourByteHost host;
    FaultyStream stream;
    ASSERT_EQ(host.filter->Save(&stream, TRUE), S_OK);
    const std::vector<std::uint8_t> expected{'0', 0, '0', 0, '0', 0, '0', 0, '0', 0, '0', 0,   '0', 0,
                                             '0', 0, '0', 0, '0', 0, '0', 0, ' ', 0, 'A', 'B', 'C', 'D'};
    EXPECT_EQ(stream.bytes, expected);
}

TEST(Persistence, ReadsTheVersionWordAndThenTheProject) {
    FourByteHost host;
    auto bytes = wordOf("-17\t");
    bytes.insert(bytes.end(), {'w', 'x', 'y', 'z', '!'});
    FaultyStream stream(bytes);
    EXPECT_EQ(host.filter->Load(&stream), S_OK);
    EXPECT_EQ(host.filter->LoadedVersion(), -17);
    EXPECT_EQ(host.loaded, "wxyz");
    EXPECT_EQ(stream.position, bytes.size() - 1);
}

TEST(Persistence, DoesntLookForAProjectBehindABadVersionWord) {
    FourByteHost host;
    for (const std::string word :
         {"00000000000x", "x0000000000 ", "000000000000", "0-0000000000", " ", "-"}) {
        FaultyStream stream(wordOf(word));
        EXPECT_EQ(host.filter->Load(&stream), VFW_E_INVALID_FILE_FORMAT) << word;
    }
    EXPECT_EQ(host.loaded, "");
    EXPECT_EQ(host.filter->Load(nullptr), E_POINTER);
    EXPECT_EQ(host.filter->Save(nullptr, TRUE), E_POINTER);
}

TEST(Persistence, IsDirtyAsTheLastSaveLeftIt) {
    FourByteHost host;
    FaultyStream stream;
    EXPECT_EQ(host.filter->IsDirty(), S_FALSE);
    ASSERT_EQ(host.filter->Save(&stream, FALSE), S_OK);
    EXPECT_EQ(host.filter->IsDirty(), S_OK);
    stream.position = 0;
    ASSERT_EQ(host.filter->Load(&stream), S_OK);
    EXPECT_EQ(host.filter->IsDirty(), S_OK);
    ASSERT_EQ(host.filter->Save(&stream, TRUE), S_OK);
    EXPECT_EQ(host.filter->IsDirty(), S_FALSE);
}

TEST(Persistence, LeavesTheLockToTheEngine) {
    FourByteHost host;
    // Another thread gets it while bytes come and go; it would wait until the end of the call otherwise.
    const auto lockIsFree = [&](IStream*) {
        auto asked = std::async(std::launch::async, [&] { return host.filter->GetOutputPinCount(); });
        EXPECT_EQ(asked.wait_for(std::chrono::seconds(10)), std::future_status::ready);
        return S_OK;
    };
    host.filter->onSaveState = host.filter->onLoadState = lockIsFree;
    FaultyStream stream;
    EXPECT_EQ(host.filter->Save(&stream, TRUE), S_OK);
    stream.position = 0;
    EXPECT_EQ(host.filter->Load(&stream), S_OK);
}

TEST(Persistence, TurnsWhatTheEngineThrowsIntoAResult) {
    FourByteHost host;
    FaultyStream stream(wordOf("00000000000 "));
    const auto loadThat = [&](std::function<HRESULT(IStream*)> load) {
        host.filter->onLoadState = std::move(load);
        stream.position = 0;
        return host.filter->Load(&stream);
    };
    EXPECT_EQ(loadThat([](IStream*) -> HRESULT { throw std::invalid_argument("grain"); }), E_FAIL);
    EXPECT_EQ(loadThat([](IStream*) -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(loadThat([](IStream*) -> HRESULT { return E_ABORT; }), E_ABORT);
    EXPECT_EQ(loadThat([](IStream*) -> HRESULT { return S_FALSE; }), S_FALSE);
    host.filter->onSaveState = [](IStream*) -> HRESULT { throw std::bad_alloc(); };
    EXPECT_EQ(host.filter->Save(&stream, FALSE), E_OUTOFMEMORY);
    EXPECT_EQ(host.filter->IsDirty(), S_FALSE) << "a save that failed changes nothing";
}

TEST(StreamedProject, ComesBackInAnotherInstrument) {
    ProjectHost first, second;
    first.layLoop();
    FaultyStream stream;
    ASSERT_EQ(first.filter->Save(&stream, TRUE), S_OK);
    stream.position = 0;
    ASSERT_EQ(second.filter->Load(&stream), S_OK);
    second.expectLoop();
    first.expectLoop();
}

TEST(StreamedProject, StandsWhereTheStreamStoodAndLeavesItBehindItself) {
    ProjectHost first, second;
    first.layLoop();
    FaultyStream stream({'h', 'o', 's', 't', '!'});
    stream.position = 5;
    ASSERT_EQ(first.filter->Save(&stream, TRUE), S_OK);
    EXPECT_EQ(stream.position, stream.bytes.size());
    EXPECT_EQ(std::string(stream.bytes.begin(), stream.bytes.begin() + 5), "host!");
    const auto word = wordOf("00000000000 ");
    EXPECT_TRUE(std::equal(word.begin(), word.end(), stream.bytes.begin() + 5));
    const auto form = stream.bytes.begin() + 5 + kWordBytes;
    EXPECT_EQ(std::string(form, form + 4), "RIFF");
    const std::uint32_t size = static_cast<std::uint32_t>(form[4] | form[5] << 8 | form[6] << 16) |
                               static_cast<std::uint32_t>(form[7]) << 24;
    EXPECT_EQ(5 + kWordBytes + 8 + size, stream.bytes.size());

    // The host goes on behind it, in both directions.
    ASSERT_EQ(stream.Write("tail", 4, nullptr), S_OK);
    stream.position = 5;
    ASSERT_EQ(second.filter->Load(&stream), S_OK);
    second.expectLoop();
    EXPECT_EQ(stream.position, stream.bytes.size() - 4);
}

TEST(StreamedProject, StaysAsItWasWhenTheVersionWordIsBad) {
    ProjectHost host;
    host.layLoop();
    FaultyStream stream;
    ASSERT_EQ(host.filter->Save(&stream, TRUE), S_OK);
    stream.bytes[10] = 'x';
    stream.position = 0;
    EXPECT_EQ(host.filter->Load(&stream), VFW_E_INVALID_FILE_FORMAT);
    host.expectLoop();
}

TEST(StreamedProject, ThatIsNoneLeavesAnEmptyInstrument) {
    ProjectHost host;
    host.layLoop();
    auto bytes = wordOf("00000000000 ");
    bytes.insert(bytes.end(), 100, 0x55);
    FaultyStream stream(bytes);
    EXPECT_EQ(host.filter->Load(&stream), E_FAIL);
    host.expectEmpty();
    host.layLoop();
    host.expectLoop();
}

TEST(StreamedProject, LosesNothingOfTheInstrumentWhereverASaveFails) {
    ProjectHost host;
    host.layLoop();
    FaultyStream whole;
    ASSERT_EQ(host.filter->Save(&whole, TRUE), S_OK);
    ASSERT_GT(whole.calls, 4);
    for (int call = 1; call <= whole.calls; ++call) {
        FaultyStream stream;
        stream.failFromCall = call;
        EXPECT_TRUE(FAILED(host.filter->Save(&stream, FALSE))) << "call " << call;
        EXPECT_EQ(host.filter->IsDirty(), S_FALSE);
    }
    host.expectLoop();
}

TEST(StreamedProject, ThatBreaksOffAtAnyCallOfTheStreamLeavesAnEmptyInstrument) {
    ProjectHost host;
    host.layLoop();
    FaultyStream whole;
    ASSERT_EQ(host.filter->Save(&whole, TRUE), S_OK);
    FaultyStream counted(whole.bytes);
    ASSERT_EQ(host.filter->Load(&counted), S_OK);
    int failures = 0;
    for (int call = 1; call <= counted.calls; ++call) {
        FaultyStream stream(whole.bytes);
        stream.failFromCall = call;
        // What comes last is the way to behind the form, which the project doesn't need.
        if (SUCCEEDED(host.filter->Load(&stream))) continue;
        ++failures;
        if (call > static_cast<int>(kWordBytes) / 2) host.expectEmpty();
    }
    EXPECT_GE(failures, counted.calls - 1);
}

TEST(StreamedProject, CutAtAnyByteIsRefused) {
    ProjectHost host;
    FaultyStream whole;
    // Small enough for every byte: the form of an instrument that has nothing.
    ASSERT_EQ(host.filter->Save(&whole, TRUE), S_OK);
    ASSERT_LT(whole.bytes.size(), 10000u);
    for (std::size_t size = 0; size < whole.bytes.size(); ++size) {
        FaultyStream stream({whole.bytes.begin(), whole.bytes.begin() + static_cast<std::ptrdiff_t>(size)});
        const HRESULT hr = host.filter->Load(&stream);
        EXPECT_EQ(hr, size < kWordBytes ? VFW_E_INVALID_FILE_FORMAT : E_FAIL) << "cut at " << size;
    }
    host.layLoop();
    host.expectLoop();
}

TEST(StreamedProject, MeetingABrokenByteIsRefusedInBothDirections) {
    ProjectHost host;
    FaultyStream whole;
    ASSERT_EQ(host.filter->Save(&whole, TRUE), S_OK);
    for (std::size_t at = 0; at < whole.bytes.size(); ++at) {
        FaultyStream target;
        target.brokenFrom = at;
        EXPECT_TRUE(FAILED(host.filter->Save(&target, FALSE))) << "byte " << at;
        EXPECT_EQ(host.filter->IsDirty(), S_FALSE);
        FaultyStream source(whole.bytes);
        source.brokenFrom = at;
        EXPECT_TRUE(FAILED(host.filter->Load(&source))) << "byte " << at;
    }
    host.layLoop();
    host.expectLoop();
}

}  // namespace
}  // namespace marnoth::test::filter_persist_test
