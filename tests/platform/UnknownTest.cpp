#include <gtest/gtest.h>

#include "platform/com/RefPtr.h"
#include "platform/com/Unknown.h"

namespace marnoth::test::unknown_test {
namespace {

constexpr IID kIdGreeter{0x3C5E1F70, 0x08BB, 0x4A6D, {0xA2, 0x17, 0x5D, 0x90, 0xCE, 0x33, 0x48, 0x01}};
constexpr IID kIdCounter{0x3C5E1F70, 0x08BB, 0x4A6D, {0xA2, 0x17, 0x5D, 0x90, 0xCE, 0x33, 0x48, 0x02}};

struct IGreeter : IUnknown {
    virtual int Greet() = 0;
};
struct ICounter : IUnknown {
    virtual int Count() = 0;
};

class Part : public Implements<CUnknown, IGreeter, ICounter> {
public:
    Part(IUnknown* outer, bool* gone) : Implements(outer), gone_(gone) {}
    ~Part() override {
        // A destructor may hand the object out once more.
        AddRefInner();
        *gone_ = true;
    }
    int Greet() override { return 7; }
    int Count() override { return 3; }

protected:
    IUnknown* FindInterface(REFIID iid) override {
        if (iid == kIdGreeter) return static_cast<IGreeter*>(this);
        return iid == kIdCounter ? static_cast<ICounter*>(this) : nullptr;
    }

private:
    void AddRefInner() {
        Inner()->AddRef();
        Inner()->Release();
    }
    bool* gone_;
};

TEST(Unknown, BeginsWithTheMakersReferenceAndGoesWithTheLast) {
    bool gone = false;
    Part* part = new Part(nullptr, &gone);
    EXPECT_EQ(part->AddRef(), 2u);
    EXPECT_EQ(part->Release(), 1u);
    EXPECT_FALSE(gone);
    EXPECT_EQ(part->Release(), 0u);
    EXPECT_TRUE(gone);
}

TEST(Unknown, AllInterfacesShareOneIdentity) {
    bool gone = false;
    auto part = RefPtr<Part>::adopt(new Part(nullptr, &gone));
    RefPtr<IGreeter> greeter;
    RefPtr<ICounter> counter;
    ASSERT_EQ(part->QueryInterface(kIdGreeter, greeter.putVoid()), S_OK);
    ASSERT_EQ(greeter->QueryInterface(kIdCounter, counter.putVoid()), S_OK);
    EXPECT_EQ(greeter->Greet(), 7);
    EXPECT_EQ(counter->Count(), 3);
    RefPtr<IUnknown> first;
    RefPtr<IUnknown> second;
    greeter->QueryInterface(IID_IUnknown, first.putVoid());
    counter->QueryInterface(IID_IUnknown, second.putVoid());
    EXPECT_EQ(first, second);
}

TEST(Unknown, AnInterfaceItLacksGivesNullAndNoInterface) {
    bool gone = false;
    auto part = RefPtr<Part>::adopt(new Part(nullptr, &gone));
    void* out = &gone;
    EXPECT_EQ(part->QueryInterface(IID_IDispatch, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(part->QueryInterface(kIdGreeter, nullptr), E_POINTER);
}

/// An object that another one is a part of.
class Whole : public Implements<CUnknown, IDispatch> {
public:
    explicit Whole(bool* partGone) : Implements(nullptr), part_(new Part(Owner(), partGone)) {}
    ~Whole() override { part_->Inner()->Release(); }

    HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

protected:
    IUnknown* FindInterface(REFIID iid) override {
        if (iid == IID_IDispatch) return static_cast<IDispatch*>(this);
        return iid == kIdGreeter ? static_cast<IGreeter*>(part_) : nullptr;
    }

private:
    Part* const part_;
};

TEST(Unknown, APartAnswersWithTheWholesIdentityAndCount) {
    bool partGone = false;
    auto whole = RefPtr<Whole>::adopt(new Whole(&partGone));
    RefPtr<IGreeter> greeter;
    ASSERT_EQ(whole->QueryInterface(kIdGreeter, greeter.putVoid()), S_OK);
    RefPtr<IDispatch> dispatch;
    EXPECT_EQ(greeter->QueryInterface(IID_IDispatch, dispatch.putVoid()), S_OK);
    RefPtr<IUnknown> identity;
    greeter->QueryInterface(IID_IUnknown, identity.putVoid());
    EXPECT_EQ(identity, whole->Inner());
    dispatch.reset();
    identity.reset();
    whole.reset();
    EXPECT_FALSE(partGone) << "the part's interface holds the whole";
    greeter.reset();
    EXPECT_TRUE(partGone);
}

TEST(Unknown, APartsInnerIdentityIsItsOwn) {
    bool partGone = false;
    bool outerGone = false;
    auto outer = RefPtr<Part>::adopt(new Part(nullptr, &outerGone));
    Part* part = new Part(outer->Owner(), &partGone);
    RefPtr<IUnknown> inner;
    ASSERT_EQ(part->Inner()->QueryInterface(IID_IUnknown, inner.putVoid()), S_OK);
    EXPECT_EQ(inner, part->Inner());
    EXPECT_NE(inner.get(), outer->Owner());
    inner.reset();
    part->Inner()->Release();
    EXPECT_TRUE(partGone);
    EXPECT_FALSE(outerGone);
}

}  // namespace
}  // namespace marnoth::test::unknown_test
