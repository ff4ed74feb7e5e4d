// SPDX-License-Identifier: GPL-3.0-or-later
//
// Style sheets that are set on widgets and read back: they are state, so their
// texts are exact.
#ifndef WINDOW_STYLES_H
#define WINDOW_STYLES_H

constexpr char STYLE_WHITE[] = "background-color: white";
constexpr char STYLE_READY[] = "background-color: rgb(126,232,255)";
constexpr char STYLE_IDLE[] = "background-color: rgb(238, 238,238)";
constexpr char STYLE_CAUTION[] = "background-color: yellow";
constexpr char STYLE_NO_ADVICE[] = "background-color: rgb(255,252,239)";

#endif
