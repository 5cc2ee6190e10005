#pragma once

#include "platform/com/Com.h"
#include "seam/LoadFault.h"

namespace marnoth {

inline constexpr IID IID_IMarnothFaults{
    0x8D2F6C51, 0x71B3, 0x4A59, {0x9E, 0x06, 0xC5, 0x1A, 0x3F, 0xB8, 0x27, 0xD0}};

/// Why a load failed, for whoever wants to say more than its code: the instrument answers `QueryInterface`
/// for it. Any thread but the streaming one; takes no lock.
///
/// It stands beside `IGrooveSampler` since the slots of that one are fixed. It asks back instead of loading
/// anew, so that it tells of every load, whoever asked for it: a shell that shows a message of the page, or a
/// host that restores a stream, learns the reason as well as one that loads itself. A fault belongs to the
/// thread that loaded, as the code does that it explains: loads of other threads don't disturb it.
struct IMarnothFaults : IUnknown {
    /// How the last `LoadProject`, `LoadFileToBin`, `LoadFileToPad` or load of a stream on the calling thread
    /// ended: `FaultKind::none` when it did what it was asked for, when there was none yet, and when another
    /// instrument has loaded on this thread since. A call that is refused for its arguments isn't a load.
    virtual HRESULT GetLoadFault(LoadFault* fault) = 0;
    /// What the same load passed over, since damaged files are taken as far as they go
    /// (`IMarnothOptions::SetLenientFiles`): `cutShort` or `lengthUnknown` of the audio, else none.
    virtual HRESULT GetLoadDamage(LoadFault* damage) = 0;
};

}  // namespace marnoth
