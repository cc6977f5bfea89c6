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

// Hands out the elements of an argument vector one at a time, as the walk reaches them. A
// text handed out must stay where it is for the source's life (an icon instruction points
// into it).
class ArgumentSource {
public:
    virtual ~ArgumentSource() = default;
    virtual int Count() const = 0;
    // Element index (1 .. Count() - 1); null is taken as empty.
    virtual const char* At(int index) = 0;
};

// The same walk over a source, asking only for the elements it reaches before -C, and
// leaving the -C text out (commandLine stays as it is): every other field and the icon
// instruction come out as LayOptions makes them, while the elements after -C, which
// only make up that text, are never asked for.
IconInstruction LayOptionsBeforeCommand(ArgumentSource& source, ConnectionSettings& settings);
