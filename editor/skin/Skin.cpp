#include "editor/skin/Skin.h"

#include <map>
#include <stdexcept>
#include <string>

#include "editor/skin/SkinFiles.h"

namespace marnoth {

namespace {

using Pictures = std::map<std::string, Bitmap>;

/// Everything at once: the page shows all of it anyway. The files are the program's own, so that a bad one is
/// a mistake of the build.
Pictures decodeAll() {
    Pictures pictures;
    for (const SkinFile& file : skinFiles()) {
        auto bitmap = readBmp(file.bytes);
        if (!bitmap) throw std::logic_error("The picture " + file.name + " of the skin can't be read.");
        pictures[file.name] = std::move(*bitmap);
    }
    return pictures;
}

const Bitmap& picture(const std::string& name) {
    static const Pictures pictures = decodeAll();
    return pictures.at(name);
}

Bitmap partOf(const Bitmap& whole, const Rect& area) {
    Bitmap part(area.width(), area.height());
    for (int y = 0; y < area.height(); ++y)
        for (int x = 0; x < area.width(); ++x) part.at(x, y) = whole.at(area.left + x, area.top + y);
    return part;
}

/// A cursor's file has the picture on the left and its mask on the right.
CursorPicture cursorFrom(const std::string& name, Point hotSpot) {
    const Bitmap& both = picture(name);
    const int width = both.width() / 2;
    return {partOf(both, Rect::at(0, 0, width, both.height())),
            partOf(both, Rect::at(width, 0, width, both.height())), hotSpot};
}

}  // namespace

const Bitmap& skinBitmap(int number) {
    return picture(std::to_string(number));
}

const CursorPicture& skinCursor(PageCursor cursor) {
    static const std::map<PageCursor, CursorPicture> cursors{
        {PageCursor::dragCopy, cursorFrom("drag-copy", {0, 0})},
        {PageCursor::sizeHorizontal, cursorFrom("size-bar-h", {15, 15})},
        {PageCursor::sizeVertical, cursorFrom("size-bar-v", {15, 15})},
    };
    return cursors.at(cursor);
}

}  // namespace marnoth
