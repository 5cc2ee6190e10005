/// Seeking through the instrument: what a pin downstream asks its output pins goes to the source. On Windows
/// the system's own pass-through is between the two.

#include "host/FilterHost.h"
#include "platform/com/ModuleLock.h"
#include "support/SeekingSource.h"

namespace marnoth::test::filter_seeking_test {
namespace {

template <class Interface>
RefPtr<Interface> query(IUnknown& object, REFIID iid) {
    RefPtr<Interface> found;
    EXPECT_EQ(object.QueryInterface(iid, found.putVoid()), S_OK);
    return found;
}

RefPtr<IMediaSeeking> seekingOf(IUnknown& pin) {
    return query<IMediaSeeking>(pin, IID_IMediaSeeking);
}

RefPtr<IMediaPosition> positionOf(IUnknown& pin) {
    return query<IMediaPosition>(pin, IID_IMediaPosition);
}

ULONG references(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

/// The instrument behind a source that can seek.
struct SeekingHost {
    Apartment apartment;
    SeekingSourcePin seekable;
    FilterHost host;

    HRESULT connect() {
        const CMediaType type = audioType(44100, 2);
        return host.input().ReceiveConnection(&seekable, type.Get());
    }
    ~SeekingHost() { host.input().Disconnect(); }
};

TEST(OutputPinSeeking, GoesToThePinUpstreamOfTheInput) {
    SeekingHost it;
    ASSERT_EQ(it.connect(), S_OK);
    it.seekable.answer = S_FALSE;
    const auto seeking = seekingOf(it.host.output(0));
    LONGLONG duration = 0;
    EXPECT_EQ(seeking->GetDuration(&duration), S_FALSE);
    ASSERT_EQ(it.seekable.calls.size(), 1u);
    EXPECT_EQ(it.seekable.calls[0].operation, "GetDuration");
    LONGLONG current = 5, stop = 6;
    EXPECT_EQ(seeking->SetPositions(&current, 1, &stop, 1), S_FALSE);
    EXPECT_EQ(it.seekable.calls.back().operation, "SetPositions");
    const auto position = positionOf(it.host.output(3));
    EXPECT_EQ(position->put_Rate(2.0), S_FALSE);
    EXPECT_EQ(it.seekable.calls.back().operation, "put_Rate");
}

TEST(OutputPinSeeking, IsNotThereWithoutASource) {
    SeekingHost it;
    const auto seeking = seekingOf(it.host.output(0));
    LONGLONG duration = 0;
    EXPECT_EQ(seeking->GetDuration(&duration), E_NOTIMPL);
    EXPECT_EQ(positionOf(it.host.output(0))->put_Rate(2.0), E_NOTIMPL);
    // The part that was made before the source came asks it all the same.
    ASSERT_EQ(it.connect(), S_OK);
    EXPECT_EQ(seeking->GetDuration(&duration), S_OK);
}

TEST(OutputPinSeeking, IsNotThereWithASourceThatCant) {
    Apartment apartment;
    FilterHost host;
    ASSERT_EQ(host.connectInput(), S_OK);
    LONGLONG duration = 0;
    EXPECT_EQ(seekingOf(host.output(0))->GetDuration(&duration), E_NOTIMPL);
    EXPECT_EQ(positionOf(host.output(0))->put_Rate(2.0), E_NOTIMPL);
}

TEST(OutputPinSeeking, IsOnePartOfThePinForAsLongAsItLives) {
    SeekingHost it;
    IPin& pin = it.host.output(0);
    IMediaSeeking* const first = seekingOf(pin).get();
    const auto again = seekingOf(pin);
    EXPECT_EQ(again.get(), first);
    EXPECT_NE(seekingOf(it.host.output(1)).get(), first);
    const auto position = positionOf(pin);
    for (IUnknown* face : {static_cast<IUnknown*>(again.get()), static_cast<IUnknown*>(position.get())}) {
        EXPECT_TRUE(query<IUnknown>(*face, IID_IUnknown) == query<IUnknown>(pin, IID_IUnknown));
        EXPECT_EQ(query<IPin>(*face, IID_IPin).get(), &pin);
        EXPECT_TRUE(seekingOf(*face) == again);
        EXPECT_TRUE(positionOf(*face) == position);
    }
}

TEST(OutputPinSeeking, CountsWithThePin) {
    SeekingHost it;
    IPin& pin = it.host.output(0);
    ASSERT_EQ(references(pin), 1u);
    {
        const auto seeking = seekingOf(pin);
        EXPECT_EQ(references(pin), 2u);
        EXPECT_EQ(references(*seeking), 2u);
        const auto position = positionOf(pin);
        EXPECT_EQ(references(pin), 3u);
    }
    EXPECT_EQ(references(pin), 1u);
}

TEST(OutputPinSeeking, KeepsNeitherTheInstrumentNorItsSourceAlive) {
    const long modules = ModuleLock::count();
    SeekingSourcePin seekable;
    {
        Apartment apartment;
        FilterHost host;
        const CMediaType type = audioType(44100, 2);
        ASSERT_EQ(host.input().ReceiveConnection(&seekable, type.Get()), S_OK);
        LONGLONG duration = 0;
        EXPECT_EQ(seekingOf(host.output(0))->GetDuration(&duration), S_OK);
        EXPECT_EQ(references(*host.owner), 1u);
        EXPECT_EQ(seekable.references, 1u) << "the connection alone";
    }
    EXPECT_EQ(ModuleLock::count(), modules);
}

TEST(OutputPinSeeking, MayBeLetGoAfterTheInstrument) {
    Apartment apartment;
    RefPtr<IMediaSeeking> seeking;
    {
        FilterHost host;
        seeking = seekingOf(host.output(0));
    }
    EXPECT_EQ(references(*seeking), 1u);
}

TEST(OutputPinSeeking, NeedsAPlaceToGo) {
    FilterHost host;
    EXPECT_EQ(host.output(0).QueryInterface(IID_IMediaSeeking, nullptr), E_POINTER);
    EXPECT_EQ(host.output(0).QueryInterface(IID_IMediaPosition, nullptr), E_POINTER);
}

TEST(OutputPinSeeking, IsNothingThatTheInputPinHas) {
    FilterHost host;
    void* out = &out;
    EXPECT_EQ(host.input().QueryInterface(IID_IMediaSeeking, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

}  // namespace
}  // namespace marnoth::test::filter_seeking_test
