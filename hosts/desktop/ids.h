// Numbers of the program's commands and resources. Plain defines: the resource compiler reads them too.
#pragma once

#define HOST_ICON 1
#define HOST_MENU 1
#define HOST_ACCELERATORS 1
/// The first one is the program's, and holds for the plug-in too.
#define HOST_CONTROLS_MANIFEST 2
/// One for each size of icons: the strip's number is this and the size.
#define HOST_TOOLBAR_ICONS 1000
#define HOST_TOOLBAR_FADED_ICONS 1500

#define HOST_RUN_PLUGIN 100
#define HOST_OPEN 101
#define HOST_SAVE 102
#define HOST_SAVE_FRAMES 103
#define HOST_CLOSE 104
#define HOST_EXIT 105
#define HOST_RECENT_NONE 109

#define HOST_COPY 110

#define HOST_FIRST 120
#define HOST_PREVIOUS 121
#define HOST_PLAY 122
#define HOST_NEXT 123
#define HOST_LAST 124
#define HOST_TEN_BACK 125
#define HOST_TEN_ON 126

#define HOST_ZOOM_FIT 130
#define HOST_ZOOM_IN 131
#define HOST_ZOOM_OUT 132
#define HOST_ZOOM_ACTUAL 133
#define HOST_CHECKERBOARD 134
#define HOST_PAN_LEFT 135
#define HOST_PAN_RIGHT 136
#define HOST_PAN_UP 137
#define HOST_PAN_DOWN 138

#define HOST_NEXT_DOCUMENT 140
#define HOST_PREVIOUS_DOCUMENT 141

#define HOST_FOR_GIF 150
#define HOST_FOR_PNG 151
#define HOST_FOR_PNG_WHOLE 152

#define HOST_MANUAL 160
#define HOST_ABOUT 161

// Nine in a row.
#define HOST_RECENT 170
