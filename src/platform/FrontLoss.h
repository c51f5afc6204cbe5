// SPDX-License-Identifier: MIT
#pragma once

/// How it came that the application isn't in front, although it counted as being there.
enum class FrontLoss {
    Lost, ///< It was in front, and another program has taken its place.
    NeverCame, ///< It was to come forward and had time for it, but another program stayed there.
};
