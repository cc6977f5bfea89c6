// Lays the options of a connection file's argument vector onto a ConnectionSettings.
// Portable: the icon options are not carried out here but handed back as the last icon
// instruction, which the Windows side applies (only the last one decides the outcome,
// since each -I or -i first throws away both icons).
#pragma once

#include "connection/connection_settings.h"

struct IconInstruction {
    enum class Kind {
        None,    // the line names no icon: the icons stay as they are
        Clear,   // -i: destroy both icons
        Decode,  // -I: destroy both icons, then decode text (null when -I was last)
    };
    Kind kind = Kind::None;
    const char* text = nullptr;  // points into the argument vector
};

// Walks argv[1] .. argv[argc - 1] (argv[0] is the program path and never looked at):
// sets noOptionM first, lays every recognised option over the fields (nothing else is
// reset), then folds -N with -M (or -K) into optionNM. Null elements are taken as empty.
IconInstruction LayOptions(const char* const* argv, int argc, ConnectionSettings& settings);
