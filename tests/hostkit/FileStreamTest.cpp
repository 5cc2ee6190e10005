#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <string>

#include "hostkit/FileStream.h"
#include "support/TempPath.h"

namespace marnoth::test::file_stream_test {
namespace {

RefPtr<FileStream> opened(const TempPath& path, FileMode mode) {
    RefPtr<FileStream> stream;
    EXPECT_EQ(FileStream::open(path.path(), mode, &stream), S_OK);
    return stream;
}

std::string contentOf(const TempPath& path) {
    std::ifstream file(path.path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

LARGE_INTEGER distance(LONGLONG bytes) {
    LARGE_INTEGER move{};
    move.QuadPart = bytes;
    return move;
}

void write(IStream& stream, const std::string& text) {
    ULONG written = 0;
    EXPECT_EQ(stream.Write(text.data(), static_cast<ULONG>(text.size()), &written), S_OK);
    EXPECT_EQ(written, text.size());
}

TEST(FileStream, WritesAtItsPositionAndReadsBack) {
    const TempPath path(".stream");
    auto stream = opened(path, FileMode::create);
    write(*stream, "abcdef");
    ULARGE_INTEGER now{};
    EXPECT_EQ(stream->Seek(distance(-4), STREAM_SEEK_CUR, &now), S_OK);
    EXPECT_EQ(now.QuadPart, 2u);
    write(*stream, "XY");
    EXPECT_EQ(stream->close(), S_OK);
    EXPECT_EQ(contentOf(path), "abXYef");

    stream = opened(path, FileMode::read);
    EXPECT_EQ(stream->Seek(distance(-3), STREAM_SEEK_END, nullptr), S_OK);
    std::array<char, 8> got{};
    ULONG read = 99;
    EXPECT_EQ(stream->Read(got.data(), 2, &read), S_OK);
    EXPECT_EQ(std::string(got.data()), "Ye");
    EXPECT_EQ(stream->Read(got.data(), 8, &read), S_FALSE);
    EXPECT_EQ(read, 1u);
    EXPECT_EQ(got[0], 'f');
}

TEST(FileStream, CommitPutsIntoTheFileWhatWasHeldBack) {
    const TempPath path(".stream");
    const auto stream = opened(path, FileMode::create);
    write(*stream, "held back");
    EXPECT_EQ(stream->Commit(STGC_DEFAULT), S_OK);
    EXPECT_EQ(contentOf(path), "held back");
}

TEST(FileStream, TellsItsSize) {
    const TempPath path(".stream");
    const auto stream = opened(path, FileMode::create);
    write(*stream, "12345");
    STATSTG about{};
    EXPECT_EQ(stream->Stat(&about, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(about.cbSize.QuadPart, 5u);
    EXPECT_EQ(about.type, static_cast<DWORD>(STGTY_STREAM));
}

TEST(FileStream, OpenedForReadingRefusesToWrite) {
    const TempPath path(".stream");
    opened(path, FileMode::create)->close();
    const auto stream = opened(path, FileMode::read);
    ULONG written = 7;
    EXPECT_EQ(stream->Write("x", 1, &written), STG_E_ACCESSDENIED);
    EXPECT_EQ(written, 0u);
}

TEST(FileStream, SaysWhyItCantBeOpened) {
    const TempPath path(".stream");
    RefPtr<FileStream> stream;
    EXPECT_EQ(FileStream::open(path.path(), FileMode::read, &stream), STG_E_FILENOTFOUND);
    EXPECT_EQ(FileStream::open(path.path() / "inside", FileMode::create, &stream), STG_E_ACCESSDENIED);
    EXPECT_EQ(FileStream::open(path.path().parent_path(), FileMode::read, &stream), STG_E_ACCESSDENIED);
    EXPECT_FALSE(stream);
}

TEST(FileStream, CantGoBeforeItsBeginning) {
    const TempPath path(".stream");
    const auto stream = opened(path, FileMode::create);
    write(*stream, "abc");
    EXPECT_EQ(stream->Seek(distance(-4), STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(stream->Seek(distance(0), 3, nullptr), STG_E_INVALIDFUNCTION);
    ULARGE_INTEGER now{};
    EXPECT_EQ(stream->Seek(distance(0), STREAM_SEEK_CUR, &now), S_OK);
    EXPECT_EQ(now.QuadPart, 3u);
}

TEST(FileStream, FailsOnceClosed) {
    const TempPath path(".stream");
    const auto stream = opened(path, FileMode::create);
    EXPECT_EQ(stream->close(), S_OK);
    char byte = 0;
    EXPECT_EQ(stream->Write(&byte, 1, nullptr), STG_E_WRITEFAULT);
    EXPECT_EQ(stream->Read(&byte, 1, nullptr), STG_E_READFAULT);
    EXPECT_EQ(stream->Commit(0), STG_E_WRITEFAULT);
    EXPECT_EQ(stream->close(), S_OK);
}

TEST(FileStream, IsOneObjectUnderBothNamesOfAStream) {
    const TempPath path(".stream");
    const auto stream = opened(path, FileMode::create);
    RefPtr<ISequentialStream> sequential;
    EXPECT_EQ(stream->QueryInterface(IID_ISequentialStream, sequential.putVoid()), S_OK);
    RefPtr<IUnknown> identity, same;
    EXPECT_EQ(stream->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    EXPECT_EQ(sequential->QueryInterface(IID_IUnknown, same.putVoid()), S_OK);
    EXPECT_TRUE(identity == same);
}

}  // namespace
}  // namespace marnoth::test::file_stream_test
