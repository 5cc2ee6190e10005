#include <gtest/gtest.h>

#include <numeric>

#include "platform/bytes/RiffStream.h"
#include "support/FaultyStream.h"
#include "support/TempPath.h"
#include "support/WaveFile.h"

namespace marnoth::test::riff_stream_test {
namespace {

void appendChunk(Bytes& to, const std::string& id, const Bytes& body) {
    append(to, id);
    append(to, static_cast<std::uint32_t>(body.size()));
    to.insert(to.end(), body.begin(), body.end());
    if (body.size() % 2) to.push_back(0);
}

Bytes form(const std::string& id, const std::string& type, const Bytes& chunks) {
    Bytes body;
    append(body, type);
    body.insert(body.end(), chunks.begin(), chunks.end());
    Bytes all;
    appendChunk(all, id, body);
    return all;
}

/// RIFF test { aaaa 3 bytes, LIST info { bbbb 2 bytes }, cccc 1 byte }, then RIFF more { }.
Bytes someForm() {
    Bytes list;
    appendChunk(list, "bbbb", {4, 5});
    Bytes chunks;
    appendChunk(chunks, "aaaa", {1, 2, 3});
    const Bytes info = form("LIST", "info", list);
    chunks.insert(chunks.end(), info.begin(), info.end());
    appendChunk(chunks, "cccc", {6});
    Bytes all = form("RIFF", "test", chunks);
    const Bytes more = form("RIFF", "more", {});
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

struct Reading {
    explicit Reading(const Bytes& content) {
        WaveFile::writeBytes(file.path(), content);
        EXPECT_EQ(riff.open(file.path(), FileMode::read), kRiffOk);
    }
    std::uint8_t byte() {
        std::uint8_t value = 0xEE;
        EXPECT_EQ(riff.read(&value, 1), 1);
        return value;
    }
    TempPath file;
    RiffStream riff;
};

ChunkInfo wanted(const char (&id)[5]) {
    return {.ckid = fourCC(id)};
}

TEST(RiffStream, NumbersOfTheErrors) {
    EXPECT_EQ(kRiffCannotOpen, 259u);
    EXPECT_EQ(kRiffCannotClose, 260u);
    EXPECT_EQ(kRiffCannotRead, 261u);
    EXPECT_EQ(kRiffCannotWrite, 262u);
    EXPECT_EQ(kRiffCannotSeek, 263u);
    EXPECT_EQ(kRiffChunkNotFound, 265u);
    EXPECT_EQ(kRiffInvalidFile, 272u);
}

TEST(RiffStream, EntersTheChunkAtThePosition) {
    Reading in(someForm());
    ChunkInfo riff;
    ASSERT_EQ(in.riff.descend(riff), kRiffOk);
    EXPECT_EQ(riff.ckid, fourCC("RIFF"));
    EXPECT_EQ(riff.fccType, fourCC("test"));
    EXPECT_EQ(riff.dataOffset, 8);
    EXPECT_EQ(riff.flags, 0u);
    EXPECT_EQ(in.riff.position(), 12);

    ChunkInfo first;
    ASSERT_EQ(in.riff.descend(first, &riff), kRiffOk);
    EXPECT_EQ(first.ckid, fourCC("aaaa"));
    EXPECT_EQ(first.cksize, 3u);
    EXPECT_EQ(first.fccType, 0u);
    EXPECT_EQ(first.dataOffset, 20);
    EXPECT_EQ(in.byte(), 1);
}

TEST(RiffStream, LeavesAChunkBehindItsPadding) {
    Reading in(someForm());
    ChunkInfo riff;
    ChunkInfo first;
    ChunkInfo list;
    in.riff.descend(riff);
    in.riff.descend(first, &riff);
    ASSERT_EQ(in.riff.ascend(first), kRiffOk);
    EXPECT_EQ(in.riff.position(), 24);
    ASSERT_EQ(in.riff.descend(list, &riff), kRiffOk);
    EXPECT_EQ(list.fccType, fourCC("info"));
}

TEST(RiffStream, FindsAChunkBehindOthers) {
    Reading in(someForm());
    ChunkInfo riff;
    in.riff.descend(riff);
    ChunkInfo chunk = wanted("cccc");
    ASSERT_EQ(in.riff.descend(chunk, &riff, RiffFind::chunk), kRiffOk);
    EXPECT_EQ(chunk.cksize, 1u);
    EXPECT_EQ(in.byte(), 6);
}

TEST(RiffStream, SearchDoesNotLookIntoLists) {
    Reading in(someForm());
    ChunkInfo riff;
    in.riff.descend(riff);
    ChunkInfo chunk = wanted("bbbb");
    EXPECT_EQ(in.riff.descend(chunk, &riff, RiffFind::chunk), kRiffChunkNotFound);
    ChunkInfo list{.fccType = fourCC("info")};
    ASSERT_EQ(in.riff.descend(list, &riff, RiffFind::list), kRiffOk);
    ASSERT_EQ(in.riff.descend(chunk, &list, RiffFind::chunk), kRiffOk);
    EXPECT_EQ(in.byte(), 4);
}

TEST(RiffStream, SearchOnlyGoesForward) {
    Reading in(someForm());
    ChunkInfo riff;
    in.riff.descend(riff);
    ChunkInfo chunk = wanted("cccc");
    in.riff.descend(chunk, &riff, RiffFind::chunk);
    in.riff.ascend(chunk);
    chunk = wanted("aaaa");
    EXPECT_EQ(in.riff.descend(chunk, &riff, RiffFind::chunk), kRiffChunkNotFound);
}

TEST(RiffStream, SearchThatFailsLeavesThePosition) {
    Reading in(someForm());
    ChunkInfo riff;
    in.riff.descend(riff);
    ChunkInfo chunk = wanted("zzzz");
    EXPECT_EQ(in.riff.descend(chunk, &riff, RiffFind::chunk), kRiffChunkNotFound);
    EXPECT_EQ(in.riff.position(), 12);
    EXPECT_EQ(chunk.ckid, fourCC("zzzz"));
}

TEST(RiffStream, AllSearchesTogetherPassOverAMillionChunksAtMost) {
    Bytes chunks;
    for (int i = 0; i < 600000; ++i) appendChunk(chunks, "JUNK", {});
    appendChunk(chunks, "last", {});
    Reading in(chunks);
    ChunkInfo chunk = wanted("last");
    ASSERT_EQ(in.riff.descend(chunk, nullptr, RiffFind::chunk), kRiffOk);
    in.riff.seek(0);
    EXPECT_EQ(in.riff.descend(chunk, nullptr, RiffFind::chunk), kRiffChunkNotFound);
    // Another file starts afresh.
    ASSERT_EQ(in.riff.open(in.file.path(), FileMode::read), kRiffOk);
    EXPECT_EQ(in.riff.descend(chunk, nullptr, RiffFind::chunk), kRiffOk);
}

TEST(RiffStream, ParentBoundsTheSearch) {
    Reading in(someForm());
    ChunkInfo riff;
    in.riff.descend(riff);
    ChunkInfo other{.fccType = fourCC("more")};
    EXPECT_EQ(in.riff.descend(other, &riff, RiffFind::riff), kRiffChunkNotFound);
    in.riff.seek(0);
    ASSERT_EQ(in.riff.descend(other, nullptr, RiffFind::riff), kRiffOk);
    EXPECT_EQ(other.cksize, 4u);
    in.riff.seek(0);
    EXPECT_EQ(in.riff.descend(other, &riff), kRiffChunkNotFound);
}

TEST(RiffStream, FormOfAnotherTypeIsPassedOver) {
    Reading in(someForm());
    ChunkInfo none{.fccType = fourCC("none")};
    EXPECT_EQ(in.riff.descend(none, nullptr, RiffFind::riff), kRiffChunkNotFound);
}

TEST(RiffStream, ReadsGoPastTheChunkButNotPastTheFile) {
    Reading in(someForm());
    ChunkInfo riff;
    in.riff.descend(riff);
    Bytes all(1000);
    EXPECT_EQ(in.riff.read(all.data(), 1000), static_cast<std::int64_t>(someForm().size()) - 12);
    EXPECT_EQ(in.riff.read(all.data(), 1), 0);
    EXPECT_FALSE(in.riff.readExactly(all.data(), 1));
}

TEST(RiffStream, RemainingCountsToTheFilesEnd) {
    Reading in(Bytes(100));
    EXPECT_EQ(in.riff.remaining(), 100);
    in.riff.seek(30);
    EXPECT_EQ(in.riff.remaining(), 70);
    in.riff.seek(1000);
    EXPECT_EQ(in.riff.remaining(), 0);
}

TEST(RiffStream, HeaderThatTheFileCutsShortIsNoChunk) {
    for (const std::size_t length : {0, 1, 7, 8, 11}) {
        Bytes bytes = someForm();
        bytes.resize(length);
        Reading in(bytes);
        ChunkInfo chunk;
        EXPECT_EQ(in.riff.descend(chunk), kRiffChunkNotFound) << length;
    }
}

TEST(RiffStream, ChunkThatRunsPastTheFileIsEnteredAndLeft) {
    Bytes bytes;
    append(bytes, std::string("big "));
    append(bytes, std::uint32_t{0xFFFFFFFF});
    Reading in(bytes);
    ChunkInfo chunk;
    ASSERT_EQ(in.riff.descend(chunk), kRiffOk);
    EXPECT_EQ(chunk.end(), 0x100000007);
    EXPECT_EQ(in.riff.ascend(chunk), kRiffOk);
    EXPECT_EQ(in.riff.position(), 0x100000008);
    EXPECT_EQ(in.riff.descend(chunk), kRiffChunkNotFound);
}

TEST(RiffStream, PositionsBefore0AreRefused) {
    Reading in(someForm());
    EXPECT_EQ(in.riff.seek(-1), kRiffCannotSeek);
}

TEST(RiffStream, NothingWorksOnAClosedStream) {
    RiffStream riff;
    ChunkInfo chunk;
    EXPECT_FALSE(riff.isOpen());
    EXPECT_EQ(riff.descend(chunk), kRiffCannotRead);
    EXPECT_EQ(riff.ascend(chunk), kRiffCannotSeek);
    EXPECT_EQ(riff.createChunk(chunk), kRiffCannotWrite);
    EXPECT_EQ(riff.read(&chunk, 1), -1);
    EXPECT_FALSE(riff.write(&chunk, 1));
    EXPECT_EQ(riff.seek(0), kRiffCannotSeek);
    EXPECT_EQ(riff.remaining(), std::nullopt);
    EXPECT_EQ(riff.close(), kRiffOk);
}

TEST(RiffStream, FilesThatCanNotBeOpened) {
    RiffStream riff;
    EXPECT_EQ(riff.open(TempPath().path(), FileMode::read), kRiffCannotOpen);
    EXPECT_EQ(riff.open(std::filesystem::temp_directory_path(), FileMode::read), kRiffCannotOpen);
    EXPECT_EQ(riff.open(TempPath().path() / "no" / "folder", FileMode::create), kRiffCannotOpen);
}

/// Writes the chunks of `someForm` without saying any size beforehand.
void writeSomeForm(RiffStream& riff) {
    ChunkInfo outer{.fccType = fourCC("test")};
    ASSERT_EQ(riff.createChunk(outer, RiffCreate::riff), kRiffOk);
    ChunkInfo first = wanted("aaaa");
    ASSERT_EQ(riff.createChunk(first), kRiffOk);
    ASSERT_TRUE(riff.write("\1\2\3", 3));
    ASSERT_EQ(riff.ascend(first), kRiffOk);
    ChunkInfo list{.fccType = fourCC("info")};
    ASSERT_EQ(riff.createChunk(list, RiffCreate::list), kRiffOk);
    ChunkInfo inner = wanted("bbbb");
    ASSERT_EQ(riff.createChunk(inner), kRiffOk);
    ASSERT_TRUE(riff.write("\4\5", 2));
    ASSERT_EQ(riff.ascend(inner), kRiffOk);
    ASSERT_EQ(riff.ascend(list), kRiffOk);
    ChunkInfo last = wanted("cccc");
    ASSERT_EQ(riff.createChunk(last), kRiffOk);
    ASSERT_TRUE(riff.write("\6", 1));
    ASSERT_EQ(riff.ascend(last), kRiffOk);
    ASSERT_EQ(riff.ascend(outer), kRiffOk);
    ChunkInfo more{.cksize = 4, .fccType = fourCC("more")};
    ASSERT_EQ(riff.createChunk(more, RiffCreate::riff), kRiffOk);
    ASSERT_EQ(riff.ascend(more), kRiffOk);
}

Bytes contentOf(const TempPath& file) {
    std::ifstream in(file.path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST(RiffStream, WritesSizesAndPaddingWhenAChunkIsLeft) {
    const TempPath file;
    RiffStream riff;
    ASSERT_EQ(riff.open(file.path(), FileMode::create), kRiffOk);
    writeSomeForm(riff);
    EXPECT_EQ(riff.close(), kRiffOk);
    EXPECT_EQ(contentOf(file), someForm());
}

TEST(RiffStream, ReadsBackWhatItJustWrote) {
    const TempPath file;
    RiffStream riff;
    ASSERT_EQ(riff.open(file.path(), FileMode::create), kRiffOk);
    writeSomeForm(riff);
    Bytes all(someForm().size());
    riff.seek(0);
    EXPECT_TRUE(riff.readExactly(all.data(), std::ssize(all)));
    EXPECT_EQ(all, someForm());
}

TEST(RiffStream, CreatingEmptiesTheFile) {
    const TempPath file;
    WaveFile::writeBytes(file.path(), Bytes(1000, 7));
    RiffStream riff;
    ASSERT_EQ(riff.open(file.path(), FileMode::create), kRiffOk);
    EXPECT_TRUE(riff.write("x", 1));
    EXPECT_EQ(riff.close(), kRiffOk);
    EXPECT_EQ(contentOf(file), Bytes{'x'});
}

TEST(RiffStream, RunsOfEverySizeComeOutAsTheyWentIn) {
    const TempPath file;
    Bytes written;
    RiffStream riff;
    ASSERT_EQ(riff.open(file.path(), FileMode::create), kRiffOk);
    for (const std::size_t size : {1, 65535, 65536, 3, 65537, 200000, 5, 65530, 100}) {
        Bytes run(size);
        std::iota(run.begin(), run.end(), static_cast<std::uint8_t>(size));
        EXPECT_TRUE(riff.write(run.data(), std::ssize(run)));
        written.insert(written.end(), run.begin(), run.end());
    }
    EXPECT_EQ(riff.remaining(), 0);
    EXPECT_TRUE(riff.seek(70000) == kRiffOk && riff.write("here", 4));
    std::copy_n("here", 4, written.begin() + 70000);
    for (const std::int64_t start : {0, 1, 65535, 69999, 100000}) {
        for (const std::int64_t size : {1, 4096, 65535, 65536, 150000}) {
            Bytes got(static_cast<std::size_t>(size));
            riff.seek(start);
            EXPECT_TRUE(riff.readExactly(got.data(), size));
            EXPECT_TRUE(std::equal(got.begin(), got.end(), written.begin() + start)) << start << ' ' << size;
        }
    }
    EXPECT_EQ(riff.close(), kRiffOk);
    EXPECT_EQ(contentOf(file), written);
}

TEST(RiffStream, FileBeyondTwoGigabytesIsReadAndWritten) {
    const TempPath file;
    const std::int64_t beyond = 2'200'000'000;
    {
        RiffStream riff;
        ASSERT_EQ(riff.open(file.path(), FileMode::create), kRiffOk);
        ChunkInfo chunk = wanted("far ");
        ASSERT_EQ(riff.seek(beyond), kRiffOk);
        ASSERT_EQ(riff.createChunk(chunk), kRiffOk);
        if (!riff.write("yes", 3) || riff.ascend(chunk) || riff.close())
            GTEST_SKIP() << "no room for a sparse file";
    }
    RiffStream riff;
    ASSERT_EQ(riff.open(file.path(), FileMode::read), kRiffOk);
    EXPECT_EQ(riff.remaining(), beyond + 12);
    riff.seek(beyond);
    ChunkInfo chunk;
    ASSERT_EQ(riff.descend(chunk), kRiffOk);
    EXPECT_EQ(chunk.cksize, 3u);
    EXPECT_EQ(chunk.dataOffset, beyond + 8);
}

TEST(RiffStreamOnStream, FormBeginsWhereTheStreamStandsAndTheStreamEndsBehindIt) {
    FaultyStream stream(Bytes(10, 0xAB));
    stream.position = 10;
    {
        RiffStream riff;
        ASSERT_EQ(riff.open(&stream), kRiffOk);
        EXPECT_EQ(stream.references, 2u);
        writeSomeForm(riff);
        riff.seek(0);
        EXPECT_EQ(riff.close(), kRiffOk);
    }
    EXPECT_EQ(stream.references, 1u);
    EXPECT_EQ(stream.position, 10 + someForm().size());
    EXPECT_EQ(Bytes(stream.bytes.begin() + 10, stream.bytes.end()), someForm());
    EXPECT_EQ(stream.bytes[9], 0xAB);
}

TEST(RiffStreamOnStream, ReadsTakeNoMoreThanTheyAskFor) {
    Bytes content(7, 0);
    const Bytes wanted = someForm();
    content.insert(content.end(), wanted.begin(), wanted.end());
    content.resize(content.size() + 100);
    FaultyStream stream(content);
    stream.position = 7;
    RiffStream riff;
    ASSERT_EQ(riff.open(&stream), kRiffOk);
    ChunkInfo outer;
    ASSERT_EQ(riff.descend(outer), kRiffOk);
    EXPECT_EQ(outer.dataOffset, 8);
    EXPECT_EQ(stream.position, 7u + 12);
    ASSERT_EQ(riff.ascend(outer), kRiffOk);
    EXPECT_EQ(riff.close(), kRiffOk);
    EXPECT_EQ(stream.position, 7u + static_cast<std::uint64_t>(outer.paddedEnd()));
}

TEST(RiffStreamOnStream, RemainingNeedsAStreamThatKnowsItsSize) {
    FaultyStream stream(Bytes(50));
    stream.position = 20;
    RiffStream riff;
    ASSERT_EQ(riff.open(&stream), kRiffOk);
    riff.seek(5);
    EXPECT_EQ(riff.remaining(), 25);
    stream.knowsSize = false;
    EXPECT_EQ(riff.remaining(), std::nullopt);
}

TEST(RiffStreamOnStream, EveryFailureOfTheStreamIsReported) {
    const auto write = [](FaultyStream& stream) {
        RiffStream riff;
        if (const RiffError error = riff.open(&stream)) return error;
        ChunkInfo chunk = wanted("data");
        if (const RiffError error = riff.createChunk(chunk)) return error;
        if (!riff.write("abc", 3)) return kRiffCannotWrite;
        if (const RiffError error = riff.ascend(chunk)) return error;
        return riff.close();
    };
    FaultyStream good;
    ASSERT_EQ(write(good), kRiffOk);
    for (int call = 1; call <= good.calls; ++call) {
        FaultyStream bad;
        bad.failFromCall = call;
        EXPECT_NE(write(bad), kRiffOk) << call;
        EXPECT_EQ(bad.references, 1u);
    }
    FaultyStream noPosition;
    noPosition.failFromCall = 1;
    EXPECT_EQ(write(noPosition), kRiffCannotSeek);
    RiffStream riff;
    EXPECT_EQ(riff.open(static_cast<IStream*>(nullptr)), kRiffCannotSeek);
}

}  // namespace
}  // namespace marnoth::test::riff_stream_test
