#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/graph/SeekingPassThru.h"
#include "support/SeekingSource.h"

namespace marnoth::test::seeking_pass_thru_test {
namespace {

constexpr HRESULT kAnswer = 0x00040777;  ///< a success that nobody else gives

/// The pin that the pass-through asks for its peer.
class InputPin : public FakePin<IPin> {
public:
    InputPin() : FakePin(PINDIR_INPUT) {}
};

/// The output pin that the pass-through is a part of.
class OuterPin : public FakePin<IPin> {
public:
    OuterPin() : FakePin(PINDIR_OUTPUT) {}

    RefPtr<IUnknown> inner;

    HRESULT QueryInterface(REFIID iid, void** out) override {
        if (inner && (iid == IID_IMediaSeeking || iid == IID_IMediaPosition))
            return inner->QueryInterface(iid, out);
        return FakePin::QueryInterface(iid, out);
    }
};

/// A pass-through within an output pin, and a source that can seek upstream of the input.
struct Seekable {
    Seekable() {
        input.peer = RefPtr<IPin>(static_cast<IPin*>(&source));
        outer.inner = RefPtr<IUnknown>::adopt((new CSeekingPassThru(static_cast<IPin*>(&outer)))->Inner());
        RefPtr<ISeekingPassThru> made;
        EXPECT_EQ(outer.inner->QueryInterface(IID_ISeekingPassThru, made.putVoid()), S_OK);
        EXPECT_EQ(made->Init(FALSE, &input), S_OK);
        EXPECT_EQ(outer.QueryInterface(IID_IMediaSeeking, seeking.putVoid()), S_OK);
        EXPECT_EQ(outer.QueryInterface(IID_IMediaPosition, position.putVoid()), S_OK);
        source.answer = kAnswer;
    }

    SeekingSourcePin source;
    InputPin input;
    OuterPin outer;
    RefPtr<IMediaSeeking> seeking;
    RefPtr<IMediaPosition> position;

    /// The last call that arrived upstream was this one.
    template <class... Arguments>
    void expectCall(HRESULT result, const std::string& operation, Arguments... expected) {
        EXPECT_EQ(result, kAnswer) << operation;
        ASSERT_FALSE(source.calls.empty()) << operation;
        const auto& call = source.calls.back();
        EXPECT_EQ(call.operation, operation);
        ASSERT_EQ(call.arguments.size(), sizeof...(expected)) << operation;
        std::size_t at = 0;
        (
            [&] {
                const auto* arrived = std::any_cast<Arguments>(&call.arguments[at++]);
                ASSERT_NE(arrived, nullptr) << operation << ", argument " << at;
                EXPECT_EQ(*arrived, expected) << operation << ", argument " << at;
            }(),
            ...);
    }
};

TEST(SeekingPassThru, HandsEveryOperationOfSeekingUpstream) {
    Seekable pin;
    IMediaSeeking& seeking = *pin.seeking;
    DWORD flags = 0;
    GUID format{};
    const GUID* wanted = &TIME_FORMAT_MEDIA_TIME;
    LONGLONG a = 0, b = 0;
    double rate = 0;
    pin.expectCall(seeking.GetCapabilities(&flags), "GetCapabilities", &flags);
    pin.expectCall(seeking.CheckCapabilities(&flags), "CheckCapabilities", &flags);
    pin.expectCall(seeking.IsFormatSupported(wanted), "IsFormatSupported", wanted);
    pin.expectCall(seeking.QueryPreferredFormat(&format), "QueryPreferredFormat", &format);
    pin.expectCall(seeking.GetTimeFormat(&format), "GetTimeFormat", &format);
    pin.expectCall(seeking.IsUsingTimeFormat(wanted), "IsUsingTimeFormat", wanted);
    pin.expectCall(seeking.SetTimeFormat(wanted), "SetTimeFormat", wanted);
    pin.expectCall(seeking.GetDuration(&a), "GetDuration", &a);
    pin.expectCall(seeking.GetStopPosition(&a), "GetStopPosition", &a);
    pin.expectCall(seeking.GetCurrentPosition(&a), "GetCurrentPosition", &a);
    pin.expectCall(seeking.ConvertTimeFormat(&a, wanted, 1234567890123, &GUID_NULL), "ConvertTimeFormat", &a,
                   wanted, LONGLONG{1234567890123}, &GUID_NULL);
    pin.expectCall(seeking.SetPositions(&a, 1, &b, 2), "SetPositions", &a, DWORD{1}, &b, DWORD{2});
    pin.expectCall(seeking.GetPositions(&a, &b), "GetPositions", &a, &b);
    pin.expectCall(seeking.GetAvailable(&a, &b), "GetAvailable", &a, &b);
    pin.expectCall(seeking.SetRate(1.5), "SetRate", 1.5);
    pin.expectCall(seeking.GetRate(&rate), "GetRate", &rate);
    pin.expectCall(seeking.GetPreroll(&a), "GetPreroll", &a);
    EXPECT_EQ(pin.source.calls.size(), 17u);
}

TEST(SeekingPassThru, HandsEveryOperationOfPositionUpstream) {
    Seekable pin;
    IMediaPosition& position = *pin.position;
    UINT count = 0;
    ITypeInfo* info = nullptr;
    LPOLESTR name = nullptr;
    DISPID id = 0;
    double seconds = 0;
    LONG can = 0;
    const IID* none = &IID_NULL;
    DISPPARAMS* const noArguments = nullptr;
    VARIANT* const noResult = nullptr;
    EXCEPINFO* const noException = nullptr;
    pin.expectCall(position.GetTypeInfoCount(&count), "GetTypeInfoCount", &count);
    pin.expectCall(position.GetTypeInfo(3, 4, &info), "GetTypeInfo", UINT{3}, LCID{4}, &info);
    pin.expectCall(position.GetIDsOfNames(IID_NULL, &name, 1, 5, &id), "GetIDsOfNames", none, &name, UINT{1},
                   LCID{5}, &id);
    pin.expectCall(position.Invoke(7, IID_NULL, 8, 9, noArguments, noResult, noException, &count), "Invoke",
                   DISPID{7}, none, LCID{8}, WORD{9}, noArguments, noResult, noException, &count);
    pin.expectCall(position.get_Duration(&seconds), "get_Duration", &seconds);
    pin.expectCall(position.put_CurrentPosition(2.5), "put_CurrentPosition", 2.5);
    pin.expectCall(position.get_CurrentPosition(&seconds), "get_CurrentPosition", &seconds);
    pin.expectCall(position.get_StopTime(&seconds), "get_StopTime", &seconds);
    pin.expectCall(position.put_StopTime(3.5), "put_StopTime", 3.5);
    pin.expectCall(position.get_PrerollTime(&seconds), "get_PrerollTime", &seconds);
    pin.expectCall(position.put_PrerollTime(4.5), "put_PrerollTime", 4.5);
    pin.expectCall(position.put_Rate(0.5), "put_Rate", 0.5);
    pin.expectCall(position.get_Rate(&seconds), "get_Rate", &seconds);
    pin.expectCall(position.CanSeekForward(&can), "CanSeekForward", &can);
    pin.expectCall(position.CanSeekBackward(&can), "CanSeekBackward", &can);
    EXPECT_EQ(pin.source.calls.size(), 15u);
}

TEST(SeekingPassThru, AnswersNothingWithoutAPinUpstream) {
    Seekable pin;
    pin.input.peer.reset();
    LONGLONG duration = 0;
    double seconds = 0;
    EXPECT_EQ(pin.seeking->GetDuration(&duration), E_NOTIMPL);
    EXPECT_EQ(pin.position->get_Duration(&seconds), E_NOTIMPL);
    EXPECT_TRUE(pin.source.calls.empty());
}

TEST(SeekingPassThru, AnswersNothingForWhatThePinUpstreamDoesntHave) {
    Seekable pin;
    pin.source.positions = false;
    LONGLONG duration = 0;
    double seconds = 0;
    EXPECT_EQ(pin.position->get_Duration(&seconds), E_NOTIMPL);
    EXPECT_EQ(pin.seeking->GetDuration(&duration), kAnswer);
    pin.source.seeks = false;
    EXPECT_EQ(pin.seeking->GetDuration(&duration), E_NOTIMPL);
}

TEST(SeekingPassThru, AsksWhoeverIsUpstreamAtThatMoment) {
    SeekingSourcePin other;
    Seekable pin;
    other.answer = E_ABORT;
    pin.input.peer = RefPtr<IPin>(static_cast<IPin*>(&other));
    EXPECT_EQ(pin.seeking->SetRate(2.0), E_ABORT);
    EXPECT_TRUE(pin.source.calls.empty());
    EXPECT_EQ(other.calls.size(), 1u);
}

TEST(SeekingPassThru, LeavesNoReferenceUpstream) {
    Seekable pin;
    const ULONG before = pin.source.references;
    LONGLONG duration = 0;
    EXPECT_EQ(pin.seeking->GetDuration(&duration), kAnswer);
    EXPECT_EQ(pin.source.references, before);
    EXPECT_EQ(pin.input.references, 0u);
}

TEST(SeekingPassThru, HasTheIdentityAndTheCountOfItsOuterObject) {
    Seekable pin;
    RefPtr<IUnknown> identity;
    EXPECT_EQ(pin.seeking->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    EXPECT_EQ(identity.get(), static_cast<IPin*>(&pin.outer));
    RefPtr<IMediaPosition> across;
    EXPECT_EQ(pin.seeking->QueryInterface(IID_IMediaPosition, across.putVoid()), S_OK);
    EXPECT_TRUE(across == pin.position);
    EXPECT_EQ(pin.outer.references, 4u) << "two interfaces held, one asked for across, and the identity";
    across.reset();
    identity.reset();
    EXPECT_EQ(pin.outer.references, 2u);
    pin.seeking.reset();
    pin.position.reset();
    EXPECT_EQ(pin.outer.references, 0u);
    EXPECT_EQ(pin.outer.inner->AddRef(), 2u) << "the inner identity counts for itself";
    EXPECT_EQ(pin.outer.inner->Release(), 1u);
}

TEST(SeekingPassThru, IsSetUpOnceForAPinThatSendsOn) {
    InputPin input;
    auto inner = RefPtr<IUnknown>::adopt((new CSeekingPassThru(nullptr))->Inner());
    RefPtr<ISeekingPassThru> passThru;
    ASSERT_EQ(inner->QueryInterface(IID_ISeekingPassThru, passThru.putVoid()), S_OK);
    EXPECT_EQ(passThru->Init(FALSE, nullptr), E_POINTER);
    EXPECT_EQ(passThru->Init(TRUE, &input), E_NOTIMPL);
    RefPtr<IMediaSeeking> seeking;
    ASSERT_EQ(inner->QueryInterface(IID_IMediaSeeking, seeking.putVoid()), S_OK);
    EXPECT_EQ(seeking->SetRate(1.0), E_NOTIMPL) << "nobody has said where upstream is";
    EXPECT_EQ(passThru->Init(FALSE, &input), S_OK);
    EXPECT_EQ(passThru->Init(FALSE, &input), E_FAIL);
}

}  // namespace
}  // namespace marnoth::test::seeking_pass_thru_test
