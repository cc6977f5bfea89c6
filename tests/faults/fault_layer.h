// The fault-injection layer of the Windows tests. The imports of one loaded module (the DLL
// under test, never the test program) are redirected through wrappers that
//   - count the module's calls of every system function that can fail, and where each was
//     made from (its site: the return address as an offset into the module);
//   - when armed with k, make call number k fail the way the function documents its failure
//     (its failure value and a matching last-error code), once;
//   - keep the books: every icon, bitmap, DC, file, mapping, view, registry key and memory
//     block the module creates, and every one it destroys, by kind.
// The layer is process-wide state, used from the test's thread; the module is expected to be
// unloaded with its imports still redirected (its static destructors free through the books).
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace faults {

enum class ObjectKind {
    Icon,
    Bitmap,
    DeviceContext,
    File,
    Mapping,
    View,
    RegistryKey,
    HeapBlock,   // malloc, calloc, realloc, _strdup; free
    LocalBlock,  // LocalAlloc and what the system allocates with it for the caller; LocalFree
    Count
};
constexpr std::size_t kObjectKindCount = static_cast<std::size_t>(ObjectKind::Count);
const char* KindName(ObjectKind kind);

// One counted call: the function's name and where in the module it was called from, as
// offsets into the module of the innermost return addresses on the stack (the allocations of
// `operator new` all come from one place; the callers above it tell them apart).
constexpr std::size_t kSiteDepth = 4;
struct CallSite {
    const char* function = "";
    std::array<std::uintptr_t, kSiteDepth> path{};
    bool operator<(const CallSite& other) const;
    bool operator==(const CallSite& other) const;
};
std::string Describe(const CallSite& site);  // "CreateFileA at +0x1a2b3 < +0x4c5d6"

// Redirects the module's imports of every function the layer wraps; answers how many import
// slots now lead to a wrapper. The books and the count start over.
std::size_t InstallInto(HMODULE module);

// The module's objects that are alive now, per kind (created and not yet destroyed).
using Balance = std::array<long, kObjectKindCount>;
Balance LiveObjects();
// "Icon 1, File 2" for the kinds that are not zero; empty when none is.
std::string DescribeLive(const Balance& live);
// Each live object with where it was made (its kind's name in `function`).
struct LiveObject {
    ObjectKind kind;
    CallSite madeAt;
};
std::vector<LiveObject> LiveObjectList();
// How many objects of each kind the module made since the layer was installed.
Balance MadeObjects();
// Whether the books remember destroyed objects to see one destroyed twice (on by default);
// a long soak turns it off so that the books stay as small as the module's live objects.
void RememberDestroyed(bool on);

// Problems the books saw: an object destroyed twice or as another kind than it was made.
std::vector<std::string> BookProblems();

// The caller of a COM method took an object the module made (an icon Extract hands out) and
// destroys it itself: it leaves the module's books.
void HandedOut(ObjectKind kind, const void* object);

// Counting: every call of a wrapped function that can fail, in order.
std::uint64_t CallCount();
void RecordTrace(bool on);  // keep each call's site (the counting run)
const std::vector<CallSite>& Trace();

// Objects alive now are no longer the run's: what a warm-up made that lives as long as the
// module or the thread does.
void ForgetLiveObjects();
// Starts the count again from 0, armed with k (0: none), keeping each call's site or not.
void BeginCounting(std::uint64_t armAt, bool trace);

// Fails call number k (1-based) of the module, once; 0 disarms (what fired stays known).
void ArmAt(std::uint64_t k);

// From now on, in every count (BeginCounting starts one), the first call of `function`
// fails too, without being counted: a standing fault under which the armed one sweeps the
// road that only a failure opens. Null ends it.
void FailFirstCallOf(const char* function);
// The same for the first `calls` calls of `function` in a row: a system that refuses
// several times before it gives in.
void FailFirstCallsOf(const char* function, unsigned calls);

// While one lives, the module's calls are neither counted nor failed (a scenario's own
// set-up through the module); the books go on.
class PausedCounting {
public:
    PausedCounting();
    ~PausedCounting();
    PausedCounting(const PausedCounting&) = delete;
    PausedCounting& operator=(const PausedCounting&) = delete;
};
bool Fired();          // the armed call happened and was failed
CallSite FiredCall();  // which it was

// The files as a cloud provider shows them: the module's GetFileAttributesA of `path` answers
// the file's real attributes with `bits` added (Wine keeps no placeholder or offline bits of
// its own); 0 takes the file out again. Paths compare without regard to letter case or the
// kind of slash; installing the layer forgets every file.
void AddAttributes(const std::string& path, DWORD bits);
// How many times the module called CreateFileA on `path` since the layer was installed
// (every call, whatever it asked for and whether it succeeded).
std::uint64_t FileOpens(const std::string& path);

// The wrapped functions' names, for the README's and the tests' accounting.
std::vector<std::string> WrappedFunctions();

}  // namespace faults
