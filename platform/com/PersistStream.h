#pragma once

#include "platform/com/Com.h"

namespace marnoth {

/// Persistence in a stream: a version word, and behind it whatever the class that derives from this writes.
///
/// The word is 24 bytes: twelve UTF-16 code units, little-endian, of the decimal number in eleven digits and
/// a blank. A reader takes an optional minus sign, digits, and as the end a blank, tab, carriage return, line
/// feed or zero unit; a number beyond `int` counts as the nearest there is. Only `Save`
/// sets whether it is dirty. Brings no `IUnknown` of its own and no lock: the object that this is a base of
/// supplies both.
class CPersistStream : public IPersistStream {
public:
    HRESULT IsDirty() override { return dirty_ ? S_OK : S_FALSE; }
    /// `VFW_E_INVALID_FILE_FORMAT` for anything but a version word in front.
    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, BOOL clearDirty) override;
    HRESULT GetSizeMax(ULARGE_INTEGER* bytes) override;

    /// The version that the last `Load` read; 0 before.
    int LoadedVersion() const { return loadedVersion_; }

protected:
    ~CPersistStream() = default;

    virtual HRESULT WriteToStream(IStream* stream) = 0;
    virtual HRESULT ReadFromStream(IStream* stream) = 0;
    /// The version that `Save` writes.
    virtual int PersistVersion() { return 0; }
    /// The most bytes that `WriteToStream` writes.
    virtual int SizeMax() { return 0; }

private:
    bool dirty_ = false;
    int loadedVersion_ = 0;
};

}  // namespace marnoth
