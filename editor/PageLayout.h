#pragma once

#include <array>

#include "platform/drawing/Geometry.h"
#include "seam/Limits.h"

namespace marnoth {

/// Where everything lies on the page, in client pixels.

inline constexpr int kPageWidth = 600;
inline constexpr int kPageHeight = 553;

inline constexpr Rect kPadBlock{139, 6, 496, 238};
inline constexpr Rect kBinList{14, 69, 119, 218};
inline constexpr int kBinRowHeight = 15;
inline constexpr Rect kStripPanel{1, 232, 597, 339};
inline constexpr Rect kStripPlot{37, 248, 581, 327};
inline constexpr Rect kKeyMapTab{6, 234, 27, 286};
inline constexpr Rect kWaveformTab{6, 286, 27, 338};
inline constexpr Rect kPadView{101, 348, 583, 528};
inline constexpr Rect kPadPlot{137, 361, 583, 523};
inline constexpr Rect kKeyMapRect{51, 267, 571, 322};

/// Where the current pad, the current file and what is selected show.
inline constexpr std::array<Rect, 3> kGrainPlaces{kPadView, kBinList, kStripPanel};

inline constexpr int kPadColumns = 4;  ///< and as many rows
/// The corner of a pad's cell.
constexpr Point padCell(int pad) {
    return {138 + 89 * (pad % kPadColumns), 43 + 57 * (pad / kPadColumns)};
}
constexpr Rect padImage(int pad) {
    const Point cell = padCell(pad);
    return {cell.x, cell.y - 38, cell.x + 44, cell.y};
}

/// Ids of the controls. Those of a row of pads count up from the first, but for Mute.
enum ControlId : int {
    kFirstMute = 1024,
    kLastMute = 1040,  ///< 1039 isn't used
    kFirstSynced = 1041,
    kFirstLooping = 1057,
    kFirstOpen = 1073,
    kAudition = 1092,
    kFirstVolumeKnob = 1093,
    kFirstPanKnob = 1109,
    kPadTail = 1125,
    kLoadToBin = 1126,
    kZoomIn = 1127,
    kZoomOut = 1128,
    kRowsHigher = 1129,
    kRowsLower = 1130,
    kBinPlay = 1132,
    kBinStop = 1133,
    kGrainTranspose = 1134,
    kGrainVolume = 1135,
    kGrainPan = 1136,
    kFollowKey = 1137,
    kHighKey = 1138,
    kLowKey = 1139,
    kRootKey = 1140,
    kLowVelocity = 1141,
    kHighVelocity = 1142,
    kOutput = 1143,
    kDeleteFromBin = 1144,
    kFirstSolo = 1145,
    kOpenProject = 1161,
    kSaveProject = 1162,
    kClearProject = 1165,
    kOneShot = 1166,
    kTransposeKnob = 1167,
    kVolumeKnob = 1168,
    kPanKnob = 1169,
    kMidiChannel = 1170,
    kRootNote = 1171,
    kPadVolumeText = 1172,
    kPadPanText = 1173,
    kSnap = 1174,
};

constexpr int muteId(int pad) {
    return pad < kPads - 1 ? kFirstMute + pad : kLastMute;
}

/// Commands of menus.
enum MenuCommand : int {
    kHelpCommand = 32768,
    kOpenAudioCommand = 32770,
    kLoopingCommand = 32771,
    kSyncedCommand = 32772,
    kClearPadCommand = 32773,
};

}  // namespace marnoth
