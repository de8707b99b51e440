// The desktop program's toolbar icons: their places in the strip that resources/art draws, and the sizes it
// draws them in. Plain defines, as everything here.
#pragma once

#define LUMAFOLD_ICON_RUN 0
#define LUMAFOLD_ICON_OPEN 1
#define LUMAFOLD_ICON_SAVE 2
#define LUMAFOLD_ICON_COPY 3
#define LUMAFOLD_ICON_FIRST 4
#define LUMAFOLD_ICON_PREVIOUS 5
#define LUMAFOLD_ICON_PLAY 6
#define LUMAFOLD_ICON_PAUSE 7
#define LUMAFOLD_ICON_NEXT 8
#define LUMAFOLD_ICON_LAST 9
#define LUMAFOLD_ICON_SMALLER 10
#define LUMAFOLD_ICON_LARGER 11
#define LUMAFOLD_ICON_ACTUAL 12
#define LUMAFOLD_ICON_FIT 13
#define LUMAFOLD_ICON_CHECKERBOARD 14
#define LUMAFOLD_ICON_HELP 15
#define LUMAFOLD_ICONS 16

/// For screens of 96, 120, 144 and 192 dots an inch.
#define LUMAFOLD_ICON_SIZES 24, 30, 36, 48
