#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/com/PersistStream.h"
#include "platform/graph/Graph.h"

namespace marnoth::test::persist_stream_test {
namespace {

/// A stream over bytes in memory, on the test's stack.
class MemoryStream : public IStream {
public:
    explicit MemoryStream(std::string bytes = {}) : bytes(std::move(bytes)) {}

    HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT Read(void* out, ULONG count, ULONG* read) override {
        const std::size_t given = std::min<std::size_t>(count, bytes.size() - position);
        std::memcpy(out, bytes.data() + position, given);
        position += given;
        if (read) *read = static_cast<ULONG>(given);
        return given == count ? S_OK : S_FALSE;
    }
    HRESULT Write(const void* in, ULONG count, ULONG* written) override {
        const auto taken = std::min<std::size_t>(count, room - std::min(room, bytes.size()));
        bytes.append(static_cast<const char*>(in), taken);
        if (written) *written = static_cast<ULONG>(taken);
        return S_OK;
    }
    HRESULT Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT Revert() override { return E_NOTIMPL; }
    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT Clone(IStream**) override { return E_NOTIMPL; }

    std::string bytes;
    std::size_t position = 0;
    std::size_t room = 1000;
};

/// Keeps one byte.
class Keeper final : public CPersistStream {
public:
    HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT GetClassID(CLSID*) override { return E_NOTIMPL; }

    char kept = 'k';
    int version = 0;
    HRESULT writeResult = S_OK;

protected:
    HRESULT WriteToStream(IStream* stream) override {
        if (FAILED(writeResult)) return writeResult;
        return stream->Write(&kept, 1, nullptr);
    }
    HRESULT ReadFromStream(IStream* stream) override { return stream->Read(&kept, 1, nullptr); }
    int PersistVersion() override { return version; }
};

/// Each character of `text` as two bytes, low byte first.
std::string units(std::string_view text) {
    std::string out;
    for (const char c : text) out.append({c, '\0'});
    return out;
}

TEST(PersistStream, WritesTheVersionInElevenDigitsAndABlank) {
    Keeper keeper;
    MemoryStream stream;
    ASSERT_EQ(keeper.Save(&stream, TRUE), S_OK);
    EXPECT_EQ(stream.bytes, units("00000000000 ") + "k");
    keeper.version = 42;
    MemoryStream second;
    ASSERT_EQ(keeper.Save(&second, TRUE), S_OK);
    EXPECT_EQ(second.bytes, units("00000000042 ") + "k");
}

TEST(PersistStream, ReadsWhatItWroteAndWhatLiesBehind) {
    Keeper keeper;
    MemoryStream stream(units("00000000042 ") + "x");
    ASSERT_EQ(keeper.Load(&stream), S_OK);
    EXPECT_EQ(keeper.LoadedVersion(), 42);
    EXPECT_EQ(keeper.kept, 'x');
}

TEST(PersistStream, AnyOfFiveCharactersEndsTheNumber) {
    for (const char end : {' ', '\t', '\r', '\n', '\0'}) {
        Keeper keeper;
        MemoryStream stream(units("-0000000007") + std::string{end, '\0'} + "x");
        EXPECT_EQ(keeper.Load(&stream), S_OK);
        EXPECT_EQ(keeper.LoadedVersion(), -7);
        EXPECT_EQ(keeper.kept, 'x');
    }
}

TEST(PersistStream, ANumberBeyondTheRangeCountsAsTheNearest) {
    const std::pair<const char*, int> words[] = {{"99999999999 ", std::numeric_limits<int>::max()},
                                                 {"2147483647 ", std::numeric_limits<int>::max()},
                                                 {"-2147483648 ", std::numeric_limits<int>::min()},
                                                 {"-9999999999 ", std::numeric_limits<int>::min()}};
    for (const auto& [word, version] : words) {
        Keeper keeper;
        MemoryStream stream(units(word) + "x");
        EXPECT_EQ(keeper.Load(&stream), S_OK) << word;
        EXPECT_EQ(keeper.LoadedVersion(), version) << word;
        EXPECT_EQ(keeper.kept, 'x');
    }
}

TEST(PersistStream, AnythingElseIsNoVersion) {
    for (const std::string& bad : {units("0000000000x "), units("            "), units("-           "),
                                   units("0-000000000 "), units("000000000000 "), std::string("0\1 \0", 4),
                                   units("00000"), std::string("00000000000 "), std::string()}) {
        Keeper keeper;
        MemoryStream stream(bad + "x");
        EXPECT_EQ(keeper.Load(&stream), VFW_E_INVALID_FILE_FORMAT);
        EXPECT_EQ(keeper.kept, 'k');
    }
}

TEST(PersistStream, IsDirtyAsTheLastSaveLeftIt) {
    Keeper keeper;
    MemoryStream stream;
    EXPECT_EQ(keeper.IsDirty(), S_FALSE);
    keeper.Save(&stream, FALSE);
    EXPECT_EQ(keeper.IsDirty(), S_OK);
    keeper.Save(&stream, TRUE);
    EXPECT_EQ(keeper.IsDirty(), S_FALSE);
}

TEST(PersistStream, SizeIsThatOfTheVersionAlone) {
    Keeper keeper;
    ULARGE_INTEGER size{};
    EXPECT_EQ(keeper.GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, 24u);
    EXPECT_EQ(keeper.GetSizeMax(nullptr), E_POINTER);
}

TEST(PersistStream, FailuresToWriteReachTheCaller) {
    Keeper keeper;
    MemoryStream full;
    full.room = 10;
    EXPECT_EQ(keeper.Save(&full, FALSE), E_FAIL);
    EXPECT_EQ(keeper.IsDirty(), S_FALSE);
    MemoryStream stream;
    keeper.writeResult = E_ACCESSDENIED;
    EXPECT_EQ(keeper.Save(&stream, FALSE), E_ACCESSDENIED);
    EXPECT_EQ(keeper.Save(nullptr, FALSE), E_POINTER);
    EXPECT_EQ(keeper.Load(nullptr), E_POINTER);
}

}  // namespace
}  // namespace marnoth::test::persist_stream_test
