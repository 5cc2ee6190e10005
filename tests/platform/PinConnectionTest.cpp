#include <gtest/gtest.h>

#include "platform/ConnectedFilters.h"

namespace marnoth::test::pin_connection_test {
namespace {

using test::floatType;
using test::Log;
using test::TestFilter;
using test::TwoFilters;

TEST(PinConnection, BothEndsKnowEachOtherAndTheType) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    RefPtr<IPin> peer;
    EXPECT_EQ(two.source.output.ConnectedTo(peer.put()), S_OK);
    EXPECT_EQ(peer.get(), &two.sink.input);
    EXPECT_EQ(two.sink.input.ConnectedTo(peer.put()), S_OK);
    EXPECT_EQ(peer.get(), &two.source.output);
    AM_MEDIA_TYPE type;
    ASSERT_EQ(two.sink.input.ConnectionMediaType(&type), S_OK);
    EXPECT_EQ(WaveFormatOf(type)->nChannels, 2);
    FreeMediaType(type);
}

TEST(PinConnection, AnUnconnectedPinHasNoPeerAndNoType) {
    TestFilter filter;
    IPin* peer = &filter.input;
    EXPECT_EQ(filter.output.ConnectedTo(&peer), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(peer, nullptr);
    AM_MEDIA_TYPE type;
    EXPECT_EQ(filter.output.ConnectionMediaType(&type), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(type.pbFormat, nullptr);
}

TEST(PinConnection, AConnectedPinRefusesAnother) {
    TwoFilters two;
    TestFilter third;
    third.output.behaviour.proposedChannels = {2};
    ASSERT_EQ(two.connect(), S_OK);
    EXPECT_EQ(two.connect(), VFW_E_ALREADY_CONNECTED);
    EXPECT_EQ(two.source.output.Connect(&third.input, nullptr), VFW_E_ALREADY_CONNECTED);
    EXPECT_EQ(third.output.Connect(&two.sink.input, nullptr), VFW_E_ALREADY_CONNECTED);
    EXPECT_FALSE(third.output.IsConnected());
    EXPECT_TRUE(two.sink.input.IsConnected());
}

TEST(PinConnection, NeedsBothFiltersStopped) {
    TwoFilters two;
    two.source.Pause();
    EXPECT_EQ(two.connect(), VFW_E_NOT_STOPPED);
    two.source.Stop();
    two.sink.Pause();
    EXPECT_EQ(two.connect(), VFW_E_NOT_STOPPED);
    two.sink.Stop();
    EXPECT_EQ(two.connect(), S_OK);
}

TEST(PinConnection, EndsOnlyWhileStopped) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    two.pause();
    EXPECT_EQ(two.source.output.Disconnect(), VFW_E_NOT_STOPPED);
    EXPECT_TRUE(two.source.output.IsConnected());
    two.source.Stop();
    EXPECT_EQ(two.source.output.Disconnect(), S_OK);
    EXPECT_EQ(two.source.output.Disconnect(), S_FALSE);
}

TEST(PinConnection, TwoPinsOfOneDirectionAreRefused) {
    TwoFilters two;
    const CMediaType type = floatType();
    EXPECT_EQ(two.source.output.Connect(&two.sink.output, type.Get()), VFW_E_INVALID_DIRECTION);
    EXPECT_EQ(two.source.output.Connect(&two.sink.output, nullptr), VFW_E_INVALID_DIRECTION);
    EXPECT_EQ(two.source.input.Connect(&two.sink.input, nullptr), VFW_E_INVALID_DIRECTION);
    EXPECT_EQ(two.sink.input.ReceiveConnection(&two.source.input, type.Get()), VFW_E_INVALID_DIRECTION);
}

TEST(PinConnection, NullPointersAreRefused) {
    TwoFilters two;
    const CMediaType type = floatType();
    EXPECT_EQ(two.source.output.Connect(nullptr, type.Get()), E_POINTER);
    EXPECT_EQ(two.sink.input.ReceiveConnection(nullptr, type.Get()), E_POINTER);
    EXPECT_EQ(two.sink.input.ReceiveConnection(&two.source.output, nullptr), E_POINTER);
}

TEST(PinConnection, AFullTypeIsTheOnlyOneTried) {
    TwoFilters two;
    two.source.output.behaviour.proposedChannels = {2};
    const CMediaType mono = floatType(1);
    ASSERT_EQ(two.connect(mono.Get()), S_OK);
    EXPECT_EQ(two.channels(), 1);
    two.disconnect();
    two.sink.input.behaviour.accepts = [](int channels) { return channels == 2; };
    EXPECT_EQ(two.connect(mono.Get()), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_FALSE(two.source.output.IsConnected());
}

TEST(PinConnection, WithoutATypeTheReceiversProposalsGoFirst) {
    TwoFilters two;
    two.source.output.behaviour.proposedChannels = {2};
    two.sink.input.behaviour.proposedChannels = {1};
    ASSERT_EQ(two.connect(), S_OK);
    EXPECT_EQ(two.channels(), 1);
}

TEST(PinConnection, ProposalsAreTriedUntilBothAccept) {
    TwoFilters two;
    two.sink.input.behaviour.proposedChannels = {1, 3};
    two.source.output.behaviour.proposedChannels = {4, 5, 6};
    two.source.output.behaviour.accepts = [](int channels) { return channels > 3; };
    two.sink.input.behaviour.accepts = [](int channels) { return channels == 5; };
    ASSERT_EQ(two.connect(), S_OK);
    EXPECT_EQ(two.channels(), 5);
}

TEST(PinConnection, APartialTypeNarrowsTheProposals) {
    TwoFilters two;
    two.source.output.behaviour.proposedChannels = {2};
    AM_MEDIA_TYPE wanted{};
    wanted.majortype = MEDIATYPE_Audio;
    wanted.subtype = MEDIASUBTYPE_PCM;
    EXPECT_EQ(two.connect(&wanted), VFW_E_NO_ACCEPTABLE_TYPES);
    wanted.subtype = MEDIASUBTYPE_IEEE_FLOAT;
    EXPECT_EQ(two.connect(&wanted), S_OK);
}

TEST(PinConnection, NothingAcceptableLeavesBothEndsFree) {
    TwoFilters two;
    two.sink.input.behaviour.accepts = [](int) { return false; };
    EXPECT_EQ(two.connect(), VFW_E_NO_ACCEPTABLE_TYPES);
    EXPECT_FALSE(two.source.output.IsConnected());
    EXPECT_FALSE(two.sink.input.IsConnected());
    EXPECT_EQ(two.source.output.Receiver(), nullptr);
    EXPECT_EQ(two.sink.references(), 1u);
}

TEST(PinConnection, AFailureThatIsMoreThanANoReachesTheCaller) {
    TwoFilters two;
    two.source.output.behaviour.accepts = [](int) { return false; };
    two.source.output.behaviour.checkResult = VFW_E_NOT_CONNECTED;
    EXPECT_EQ(two.connect(), VFW_E_NOT_CONNECTED);
    const CMediaType type = floatType();
    EXPECT_EQ(two.connect(type.Get()), VFW_E_NOT_CONNECTED);
}

TEST(PinConnection, ASuccessOtherThanOkIsANoToTheType) {
    TwoFilters two;
    two.sink.input.behaviour.accepts = [](int) { return false; };
    two.sink.input.behaviour.checkResult = S_FALSE;
    const CMediaType type = floatType();
    EXPECT_EQ(two.connect(type.Get()), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(two.sink.input.QueryAccept(type.Get()), S_FALSE);
}

TEST(PinConnection, TheReceiverIsCompleteBeforeTheConnectorIsTold) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    EXPECT_EQ(two.log, (Log{"in set 2", "in complete", "out set 2", "out complete"}));
}

TEST(PinConnection, ATypeThatTheReceiverRefusesIsNeverSet) {
    TwoFilters two;
    two.sink.input.behaviour.accepts = [](int) { return false; };
    const CMediaType type = floatType();
    ASSERT_EQ(two.connect(type.Get()), VFW_E_TYPE_NOT_ACCEPTED);
    for (const std::string& entry : two.log) EXPECT_EQ(entry.find("set"), std::string::npos) << entry;
}

TEST(PinConnection, ALateRefusalOfEitherEndUndoesBoth) {
    TwoFilters two;
    two.sink.input.behaviour.completeResult = E_UNEXPECTED;
    EXPECT_EQ(two.connect(), E_UNEXPECTED);
    EXPECT_FALSE(two.source.output.IsConnected());
    EXPECT_FALSE(two.sink.input.IsConnected());
    two.sink.input.behaviour.completeResult = S_OK;
    two.source.output.behaviour.completeResult = E_OUTOFMEMORY;
    EXPECT_EQ(two.connect(), E_OUTOFMEMORY);
    EXPECT_FALSE(two.source.output.IsConnected());
    EXPECT_FALSE(two.sink.input.IsConnected());
}

TEST(PinConnection, AConnectionHoldsBothFiltersUntilItEnds) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    EXPECT_GT(two.sink.references(), 1u);
    EXPECT_GT(two.source.references(), 1u);
    two.disconnect();
    EXPECT_EQ(two.sink.references(), 1u);
    EXPECT_EQ(two.source.references(), 1u);
}

TEST(PinConnection, TheReceiversAllocatorIsUsedBeforeTheOwn) {
    TwoFilters two;
    RefPtr<IMemAllocator> offered;
    ASSERT_EQ(two.sink.input.GetAllocator(offered.put()), S_OK);
    ASSERT_EQ(two.connect(), S_OK);
    EXPECT_EQ(two.source.output.Allocator(), offered.get());
    EXPECT_EQ(two.sink.input.Allocator(), offered.get());
    ASSERT_TRUE(two.source.output.asked.has_value());
    EXPECT_EQ(two.source.output.asked->cbAlign, 1);
    EXPECT_EQ(two.source.output.asked->cBuffers, 0);
}

TEST(PinConnection, AFailureToSizeTheBuffersEndsIt) {
    TwoFilters two;
    two.source.output.sizeResult = VFW_E_BADALIGN;
    EXPECT_EQ(two.connect(), VFW_E_BADALIGN);
    EXPECT_EQ(two.source.output.Allocator(), nullptr);
    EXPECT_FALSE(two.sink.input.IsConnected());
}

TEST(PinConnection, BreakingTakesTheAllocatorAway) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    RefPtr<IMemAllocator> allocator(two.source.output.Allocator());
    two.disconnect();
    EXPECT_EQ(two.source.output.Allocator(), nullptr);
    EXPECT_EQ(two.sink.input.Allocator(), nullptr);
    EXPECT_EQ(two.source.output.Deliver(nullptr), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(two.source.output.DeliverEndOfStream(), VFW_E_NOT_CONNECTED);
}

TEST(Pin, TellsItsFilterDirectionAndName) {
    TestFilter filter;
    PIN_INFO info;
    ASSERT_EQ(filter.output.QueryPinInfo(&info), S_OK);
    EXPECT_EQ(info.pFilter, static_cast<IBaseFilter*>(&filter));
    EXPECT_EQ(info.dir, PINDIR_OUTPUT);
    EXPECT_EQ(std::wstring(info.achName), L"Mix Output");
    info.pFilter->Release();
    LPWSTR id = nullptr;
    ASSERT_EQ(filter.output.QueryId(&id), S_OK);
    EXPECT_EQ(std::wstring(id), L"Mix Output");
    CoTaskMemFree(id);
    EXPECT_EQ(filter.references(), 1u);
}

TEST(Pin, ANameOf200CharactersIsCutTo127InItsInfo) {
    TestFilter filter;
    const std::wstring name(200, L'n');
    test::TestInputPin pin(filter, filter.lock, name.c_str(), "long");
    PIN_INFO info;
    ASSERT_EQ(pin.QueryPinInfo(&info), S_OK);
    EXPECT_EQ(std::wstring(info.achName), std::wstring(127, L'n'));
    info.pFilter->Release();
}

TEST(Pin, SharesItsFiltersCountButNotItsIdentity) {
    TestFilter filter;
    EXPECT_EQ(filter.input.AddRef(), 2u);
    EXPECT_EQ(filter.Release(), 1u);
    RefPtr<IUnknown> pinIdentity;
    filter.input.QueryInterface(IID_IUnknown, pinIdentity.putVoid());
    EXPECT_NE(pinIdentity.get(), filter.Owner());
    RefPtr<IMemInputPin> receiver;
    EXPECT_EQ(filter.input.QueryInterface(IID_IMemInputPin, receiver.putVoid()), S_OK);
    RefPtr<IUnknown> sameIdentity;
    receiver->QueryInterface(IID_IUnknown, sameIdentity.putVoid());
    EXPECT_EQ(pinIdentity, sameIdentity);
    EXPECT_EQ(filter.output.QueryInterface(IID_IMemInputPin, receiver.putVoid()), E_NOINTERFACE);
}

TEST(Pin, WhatComesFromUpstreamIsUnexpectedOnAnOutput) {
    TestFilter filter;
    EXPECT_EQ(filter.output.EndOfStream(), E_UNEXPECTED);
    EXPECT_EQ(filter.output.BeginFlush(), E_UNEXPECTED);
    EXPECT_EQ(filter.output.EndFlush(), E_UNEXPECTED);
    EXPECT_EQ(filter.input.QueryInternalConnections(nullptr, nullptr), E_NOTIMPL);
    ALLOCATOR_PROPERTIES properties;
    EXPECT_EQ(filter.input.GetAllocatorRequirements(&properties), E_NOTIMPL);
}

TEST(Pin, KeepsTheSegmentItWasTold) {
    TestFilter filter;
    EXPECT_EQ(filter.input.NewSegment(10, 20, 0.5), S_OK);
    EXPECT_EQ(filter.input.SegmentStart(), 10);
    EXPECT_EQ(filter.input.SegmentStop(), 20);
    EXPECT_EQ(filter.input.SegmentRate(), 0.5);
}

}  // namespace
}  // namespace marnoth::test::pin_connection_test
