#include "platform/windows/GdiFonts.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

#include "platform/drawing/FaceScale.h"
#include "platform/drawing/PlatformFonts.h"
#include "platform/text/Text.h"
#include "platform/windows/SystemHandle.h"

namespace marnoth {

namespace {

constexpr UINT kNoSuchGlyph = 0xFFFF;
constexpr int kFullCoverage = 64;  // of GGO_GRAY8_BITMAP
constexpr MAT2 kUpright{{0, 1}, {0, 0}, {0, 0}, {0, 1}};

/// The face at an em of so many pixels.
FontHandle makeFont(const std::wstring& face, int pixelsPerEm) {
    return FontHandle(CreateFontW(-pixelsPerEm, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                  OUT_TT_ONLY_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY,
                                  DEFAULT_PITCH | FF_DONTCARE, face.c_str()));
}

/// True if the system gives `face` for the selected font, and not some other in its place.
bool isFace(HDC device, const std::wstring& face) {
    wchar_t name[LF_FACESIZE] = {};
    return GetTextFaceW(device, LF_FACESIZE, name) > 0 && lstrcmpiW(name, face.c_str()) == 0;
}

/// How far the face reaches, in its own units; nothing for a face without outlines.
std::optional<FaceExtent> extentOf(HDC device, const std::wstring& face) {
    OUTLINETEXTMETRICW outline{};
    outline.otmSize = sizeof outline;
    if (GetOutlineTextMetricsW(device, sizeof outline, &outline) == 0 || outline.otmEMSquare == 0) return {};
    const int unitsPerEm = static_cast<int>(outline.otmEMSquare);
    const FontHandle font = makeFont(face, unitsPerEm);
    const HGDIOBJ before = SelectObject(device, font.get());
    TEXTMETRICW metrics{};
    const bool known = GetTextMetricsW(device, &metrics) != FALSE;
    SelectObject(device, before);
    if (!known) return {};
    return FaceExtent{metrics.tmAscent, metrics.tmDescent, unitsPerEm};
}

class GdiFont final : public Font {
public:
    GdiFont(DeviceHandle device, FontHandle font, FontHandle unscaled, const FaceScale& scale, int unitsPerEm)
        : font_(std::move(font)),
          unscaled_(std::move(unscaled)),
          device_(std::move(device)),
          scale_(scale),
          unitsPerEm_(unitsPerEm) {}

    int lineHeight() const override { return scale_.lineHeight(); }

    const Glyph& glyph(char32_t character) override {
        const UINT index = indexOf(character);
        const auto [place, isNew] = glyphs_.try_emplace(index);
        if (isNew) place->second = draw(index);
        return place->second;
    }

private:
    UINT indexOf(char32_t character) {
        if (character > 0xFFFF) return 0;
        const auto unit = static_cast<wchar_t>(character);
        WORD index = kNoSuchGlyph;
        SelectObject(device_.get(), font_.get());
        GetGlyphIndicesW(device_.get(), &unit, 1, &index, GGI_MARK_NONEXISTING_GLYPHS);
        return index == kNoSuchGlyph ? 0 : index;
    }

    int advanceOf(UINT index) {
        SelectObject(device_.get(), unscaled_.get());
        GLYPHMETRICS metrics{};
        GetGlyphOutlineW(device_.get(), index, GGO_METRICS | GGO_GLYPH_INDEX, &metrics, 0, nullptr,
                         &kUpright);
        return (2 * metrics.gmCellIncX * scale_.pixelsPerEm + unitsPerEm_) / (2 * unitsPerEm_);
    }

    Glyph draw(UINT index) {
        Glyph glyph;
        glyph.advance = advanceOf(index);
        SelectObject(device_.get(), font_.get());
        constexpr UINT kFormat = GGO_GRAY8_BITMAP | GGO_GLYPH_INDEX;
        GLYPHMETRICS metrics{};
        const DWORD bytes = GetGlyphOutlineW(device_.get(), index, kFormat, &metrics, 0, nullptr, &kUpright);
        // A blank has no picture.
        if (bytes == GDI_ERROR || bytes == 0) return glyph;
        std::vector<unsigned char> picture(bytes);
        if (GetGlyphOutlineW(device_.get(), index, kFormat, &metrics, bytes, picture.data(), &kUpright) ==
            GDI_ERROR)
            return glyph;
        glyph.left = metrics.gmptGlyphOrigin.x;
        glyph.top = scale_.ascent - metrics.gmptGlyphOrigin.y;
        takePicture(glyph, metrics, picture);
        return glyph;
    }

    /// The rows of `picture` are padded to whole groups of four bytes.
    static void takePicture(Glyph& glyph, const GLYPHMETRICS& metrics,
                            const std::vector<unsigned char>& picture) {
        const std::size_t stride = (std::size_t{metrics.gmBlackBoxX} + 3) / 4 * 4;
        if (stride * metrics.gmBlackBoxY > picture.size()) return;
        glyph.width = static_cast<int>(metrics.gmBlackBoxX);
        glyph.height = static_cast<int>(metrics.gmBlackBoxY);
        for (std::size_t y = 0; y < metrics.gmBlackBoxY; ++y)
            for (std::size_t x = 0; x < metrics.gmBlackBoxX; ++x) {
                const int level = std::min<int>(picture[y * stride + x], kFullCoverage);
                glyph.coverage.push_back(
                    static_cast<unsigned char>((level * 255 + kFullCoverage / 2) / kFullCoverage));
            }
    }

    // The device goes first: what is selected into it can't be deleted.
    FontHandle font_;
    FontHandle unscaled_;  ///< as large as the face's own units
    DeviceHandle device_;
    FaceScale scale_;
    int unitsPerEm_;
    std::unordered_map<UINT, Glyph> glyphs_;
};

/// Null when the system has no such face, or no memory device.
std::unique_ptr<Font> openFace(const std::wstring& face, int height) {
    constexpr int kAnySize = 16;
    const FontHandle probe = makeFont(face, kAnySize);
    DeviceHandle device(CreateCompatibleDC(nullptr));
    if (!device || !probe) return nullptr;
    const HGDIOBJ before = SelectObject(device.get(), probe.get());
    std::optional<FaceExtent> extent;
    if (isFace(device.get(), face)) extent = extentOf(device.get(), face);
    SelectObject(device.get(), before);
    if (!extent) return nullptr;
    const FaceScale scale = scaleToHeight(*extent, height);
    return std::make_unique<GdiFont>(std::move(device), makeFont(face, scale.pixelsPerEm),
                                     makeFont(face, extent->unitsPerEm), scale, extent->unitsPerEm);
}

}  // namespace

std::unique_ptr<Font> GdiFonts::open(std::string_view face, int height, std::string& error) {
    const std::wstring wanted = wideFromUtf8(face);
    std::unique_ptr<Font> font = openFace(wanted, height);
    if (!font && face == "Arial") font = openFace(L"Liberation Sans", height);
    if (!font) error = "The font \"" + std::string(face) + "\" isn't installed.";
    return font;
}

std::unique_ptr<FontSource> platformFonts() {
    return std::make_unique<GdiFonts>();
}

}  // namespace marnoth
