#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "platform/com/RefPtr.h"

namespace marnoth::test::memory_stream_test {
namespace {

LARGE_INTEGER distance(LONGLONG bytes) {
    LARGE_INTEGER move{};
    move.QuadPart = bytes;
    return move;
}

ULARGE_INTEGER size(ULONGLONG bytes) {
    ULARGE_INTEGER value{};
    value.QuadPart = bytes;
    return value;
}

void write(IStream& stream, const std::string& text) {
    ULONG written = 0;
    EXPECT_EQ(stream.Write(text.data(), static_cast<ULONG>(text.size()), &written), S_OK);
    EXPECT_EQ(written, text.size());
}

std::string contentOf(const MemoryStream& stream) {
    return {stream.bytes().begin(), stream.bytes().end()};
}

TEST(MemoryStream, WritesAtItsPositionAndReadsBack) {
    RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    write(*stream, "abcdef");
    ULARGE_INTEGER now{};
    EXPECT_EQ(stream->Seek(distance(-4), STREAM_SEEK_CUR, &now), S_OK);
    EXPECT_EQ(now.QuadPart, 2u);
    write(*stream, "XY");
    EXPECT_EQ(contentOf(*stream), "abXYef");

    EXPECT_EQ(stream->Seek(distance(-3), STREAM_SEEK_END, nullptr), S_OK);
    std::array<char, 8> got{};
    ULONG read = 99;
    EXPECT_EQ(stream->Read(got.data(), 2, &read), S_OK);
    EXPECT_EQ(std::string(got.data()), "Ye");
    EXPECT_EQ(stream->Read(got.data(), 8, &read), S_FALSE);
    EXPECT_EQ(read, 1u);
    EXPECT_EQ(got[0], 'f');
    EXPECT_EQ(stream->Read(got.data(), 8, &read), S_FALSE);
    EXPECT_EQ(read, 0u);
}

TEST(MemoryStream, BeginsWithTheBytesThatItIsGiven) {
    RefPtr<MemoryStream> stream = makeObject<MemoryStream>(std::vector<std::uint8_t>{'a', 'b', 'c'});
    char first = 0;
    EXPECT_EQ(stream->Read(&first, 1, nullptr), S_OK);
    EXPECT_EQ(first, 'a');
    write(*stream, "xyz");
    EXPECT_EQ(contentOf(*stream), "axyz");
    EXPECT_EQ(stream->takeBytes().size(), 4u);
    EXPECT_TRUE(stream->bytes().empty());
    write(*stream, "new");
    EXPECT_EQ(contentOf(*stream), "new");
}

TEST(MemoryStream, FillsWhatLiesBetweenItsEndAndAWriteBehind) {
    RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    EXPECT_EQ(stream->Seek(distance(3), STREAM_SEEK_SET, nullptr), S_OK);
    char byte = 0;
    EXPECT_EQ(stream->Read(&byte, 1, nullptr), S_FALSE);
    EXPECT_EQ(stream->Write("x", 0, nullptr), S_OK);
    EXPECT_TRUE(stream->bytes().empty()) << "nothing is written, nothing is filled";
    write(*stream, "x");
    EXPECT_EQ(contentOf(*stream), std::string("\0\0\0x", 4));
}

TEST(MemoryStream, TellsAndSetsItsSize) {
    RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    write(*stream, "12345");
    EXPECT_EQ(stream->SetSize(size(7)), S_OK);
    STATSTG about{};
    EXPECT_EQ(stream->Stat(&about, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(about.cbSize.QuadPart, 7u);
    EXPECT_EQ(about.type, static_cast<DWORD>(STGTY_STREAM));
    EXPECT_EQ(stream->SetSize(size(2)), S_OK);
    EXPECT_EQ(contentOf(*stream), "12");
    EXPECT_EQ(stream->SetSize(size(std::numeric_limits<ULONGLONG>::max())), STG_E_MEDIUMFULL);
    EXPECT_EQ(contentOf(*stream), "12");
}

TEST(MemoryStream, CantGoBeforeItsBeginningNorBeyondAllPlaces) {
    RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    write(*stream, "abc");
    EXPECT_EQ(stream->Seek(distance(-4), STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(stream->Seek(distance(0), 3, nullptr), STG_E_INVALIDFUNCTION);
    constexpr LONGLONG kFarthest = std::numeric_limits<LONGLONG>::max();
    EXPECT_EQ(stream->Seek(distance(kFarthest), STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
    ULARGE_INTEGER now{};
    EXPECT_EQ(stream->Seek(distance(0), STREAM_SEEK_CUR, &now), S_OK);
    EXPECT_EQ(now.QuadPart, 3u);
    EXPECT_EQ(stream->Seek(distance(kFarthest), STREAM_SEEK_SET, nullptr), S_OK);
    ULONG written = 7;
    EXPECT_EQ(stream->Write("x", 1, &written), STG_E_MEDIUMFULL);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(contentOf(*stream), "abc");
}

TEST(MemoryStream, RefusesNullsAndWhatItHasNot) {
    RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    EXPECT_EQ(stream->Read(nullptr, 1, nullptr), STG_E_INVALIDPOINTER);
    EXPECT_EQ(stream->Write(nullptr, 1, nullptr), STG_E_INVALIDPOINTER);
    EXPECT_EQ(stream->Stat(nullptr, 0), STG_E_INVALIDPOINTER);
    EXPECT_EQ(stream->Commit(STGC_DEFAULT), S_OK);
    EXPECT_EQ(stream->Revert(), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(stream->CopyTo(stream.get(), size(1), nullptr, nullptr), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(stream->LockRegion(size(0), size(1), 0), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(stream->UnlockRegion(size(0), size(1), 0), STG_E_INVALIDFUNCTION);
    auto* clone = static_cast<IStream*>(stream.get());
    EXPECT_EQ(stream->Clone(&clone), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(clone, nullptr);
}

TEST(MemoryStream, IsOneObjectUnderBothNamesOfAStream) {
    RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    RefPtr<ISequentialStream> sequential;
    EXPECT_EQ(stream->QueryInterface(IID_ISequentialStream, sequential.putVoid()), S_OK);
    EXPECT_EQ(sequential.get(), static_cast<ISequentialStream*>(static_cast<IStream*>(stream.get())));
    RefPtr<IPersistStream> other;
    EXPECT_EQ(stream->QueryInterface(IID_IPersistStream, other.putVoid()), E_NOINTERFACE);
}

}  // namespace
}  // namespace marnoth::test::memory_stream_test
