// The order in which the writer replaces a connection file, and what a failure leaves in it.
// The file is created anew (which empties it) and then written whole, as it always has been;
// its bytes as they are are read first, so that a write that fails once the file is empty
// can put them back. Portable: the file steps are the caller's (the system's calls in the
// writer, scripted steps in the native tests).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// How one replacement ended.
enum class Replacement {
    Written,     // the whole new text is in the file
    NotCreated,  // the file could not be created anew: it is as it was
    OldPutBack,  // the write failed once the file was empty; its old bytes are back
    OldUnknown,  // the write failed once the file was empty; its old bytes could not be read first
    OldLost,     // the write failed, and putting the old bytes back failed too
};

// Replaces the file through steps, an object with
//   bool ReadCurrent(std::string& bytes)     the file's bytes as they are; false when they
//                                            cannot be read (no file, locked, too large);
//   bool CreateEmpty()                       creates the file anew, empty;
//   bool Write(const std::string& text)      writes text from the file's start;
//   bool PutBack(const std::string& bytes)   writes bytes from the file's start and ends
//                                            the file after them (what the failed write
//                                            left beyond them goes).
// Which error the user hears of is the steps' to keep: the first step that failed.
template <typename Steps>
Replacement ReplaceFile(Steps& steps, const std::string& text) {
    std::string old;
    const bool oldKnown = steps.ReadCurrent(old);
    if (!steps.CreateEmpty()) return Replacement::NotCreated;
    if (steps.Write(text)) return Replacement::Written;
    if (!oldKnown) return Replacement::OldUnknown;
    return steps.PutBack(old) ? Replacement::OldPutBack : Replacement::OldLost;
}

// How WriteWhole ended.
enum class WholeWrite {
    Written,  // every byte
    Refused,  // the system failed a write (its error is the caller's to fetch)
    Stalled,  // the system answered success but took nothing: it gave no reason
};

// Writes size bytes through writeSome(data, size, written) -> bool, one call for the whole
// text. A call the system answers with success but fewer bytes (a volume filling up, or a
// file size limit, on the way) is followed by one for the rest, so that the system names
// its reason for refusing the rest. `done` counts the bytes the calls took, a refused
// call's included.
template <typename WriteSome>
WholeWrite WriteWhole(const char* data, std::uint32_t size, std::uint32_t& done, WriteSome writeSome) {
    done = 0;
    do {
        std::uint32_t written = 0;
        const bool wrote = writeSome(data + done, size - done, written);
        done += written < size - done ? written : size - done;
        if (!wrote) return WholeWrite::Refused;
        if (written == 0 && done < size) return WholeWrite::Stalled;
    } while (done < size);
    return WholeWrite::Written;
}
