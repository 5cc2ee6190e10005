#pragma once

#include <string>

#include "platform/drawing/Bitmap.h"

namespace marnoth::test {

/// Fails unless every pixel of `shown` is that of the picture NAME.png under tests/page/pictures. What is
/// there instead and a picture of the difference, white where they agree, are left in the temporary folder.
///
/// After a change that is meant, MARNOTH_KEEP_PICTURES=1 in the environment of `page_tests` stores what is
/// shown in place of comparing it. Look at each picture that git then calls changed before it is committed.
///
/// The pictures hold texts as FreeType 2.12 draws them from Liberation Sans 1.07. No setting of a machine
/// changes those, and where it has another version of the face as well this one is taken; but another
/// version alone, or another FreeType, may move an antialiased edge by a shade: then every picture differs,
/// and in its texts alone.
void expectPicture(const Bitmap& shown, const std::string& name);

}  // namespace marnoth::test
