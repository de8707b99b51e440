// Numbers of the plug-in's resources and of the controls that its templates and its code both name. Plain
// defines: the resource compiler reads them too. The Advanced dialog's controls have theirs in
// settings/descriptors.def.
#pragma once

#define LUMAFOLD_DIALOG_MAIN 1000
#define LUMAFOLD_DIALOG_OVERRIDE 1001
#define LUMAFOLD_DIALOG_ADVANCED 1002
#define LUMAFOLD_DIALOG_ABOUT 1003

#define LUMAFOLD_CURSOR_DRAG 6001
#define LUMAFOLD_BITMAP_TEXTURE 7012
#define LUMAFOLD_BITMAP_LOGO 10000 // and the frames that follow it
#define LUMAFOLD_LOGO_FRAMES 24

// An edit box's up-down control has the box's id plus this, and "minimum,maximum,start" for its caption.
#define LUMAFOLD_UPDOWN 10000

#define LUMAFOLD_ID_HELP 9

#define LUMAFOLD_MAIN_TEST 998
#define LUMAFOLD_MAIN_ADD 101
#define LUMAFOLD_MAIN_PASTE 102
#define LUMAFOLD_MAIN_TRUE_COLOUR 103
#define LUMAFOLD_MAIN_PAUSE 104
#define LUMAFOLD_MAIN_DELAY 105
#define LUMAFOLD_MAIN_ADVANCED 106
#define LUMAFOLD_MAIN_MATTE 107
#define LUMAFOLD_MAIN_TRANSITION 108
#define LUMAFOLD_MAIN_PALETTE 109
#define LUMAFOLD_MAIN_CUSTOM_PALETTE 110
#define LUMAFOLD_MAIN_DITHER 111
#define LUMAFOLD_MAIN_REMOVE 112
#define LUMAFOLD_MAIN_LIST 113
#define LUMAFOLD_MAIN_LOGO 115
#define LUMAFOLD_MAIN_ABOUT 116
#define LUMAFOLD_MAIN_SUPERCOMPRESS 117

#define LUMAFOLD_OVERRIDE_PICTURE 101
#define LUMAFOLD_OVERRIDE_TRANSITION 102
#define LUMAFOLD_OVERRIDE_DELAY 103
#define LUMAFOLD_OVERRIDE_PAUSE 104

#define LUMAFOLD_ABOUT_LOGO 101
