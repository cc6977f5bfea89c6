#include "tests/faults/fault_layer.h"

#include <algorithm>
#include <cstring>
#include <cstdio>
#include <map>
#include <mutex>
#include <set>
#include <tuple>

#include "tests/faults/fault_layer_state.h"

namespace faults {
namespace {

// The values one kind of object is drawn from. Objects of two spaces may share a value while
// both live: Wine's USER handles carry a reuse count in their high word, so after a few
// million icons an icon's handle can equal a live heap block's address. Within one space a
// value names one object at a time.
enum class ValueSpace { UserHandle, GdiHandle, KernelHandle, Address };

// clang-format off
constexpr ValueSpace kSpaceOfKind[kObjectKindCount] = {
    ValueSpace::UserHandle,    // Icon
    ValueSpace::GdiHandle,     // Bitmap
    ValueSpace::GdiHandle,     // DeviceContext
    ValueSpace::KernelHandle,  // File
    ValueSpace::KernelHandle,  // Mapping
    ValueSpace::Address,       // View
    ValueSpace::KernelHandle,  // RegistryKey
    ValueSpace::Address,       // HeapBlock
    ValueSpace::Address,       // LocalBlock
};
// clang-format on

// An object in the books: its space and its value.
using BookKey = std::pair<ValueSpace, const void*>;

BookKey KeyOf(ObjectKind kind, const void* object) { return {kSpaceOfKind[static_cast<std::size_t>(kind)], object}; }

struct LayerState {
    std::mutex lock;
    std::uintptr_t moduleBase = 0;
    std::size_t moduleSize = 0;
    std::uint64_t calls = 0;
    std::uint64_t armedAt = 0;
    const char* standing = nullptr;  // the function whose first calls of a run fail
    unsigned standingCalls = 0;      // how many of them
    unsigned standingFailed = 0;     // of them in this run
    bool fired = false;
    CallSite firedCall;
    bool tracing = false;
    int paused = 0;
    std::vector<CallSite> trace;
    std::map<BookKey, ObjectKind> live;
    std::map<BookKey, CallSite> madeAt;
    Balance made{};
    bool rememberDestroyed = true;
    std::set<std::pair<const void*, ObjectKind>> destroyed;
    std::vector<std::string> problems;
    std::map<std::string, DWORD> addedAttributes;  // by FileKey
    std::map<std::string, std::uint64_t> opens;    // by FileKey
};

LayerState& State() {
    static LayerState state;
    return state;
}

std::string Hex(std::uintptr_t value) {
    char text[32];
    std::snprintf(text, sizeof(text), "0x%llx", static_cast<unsigned long long>(value));
    return text;
}

// The innermost return addresses on the stack that lie in the module, as offsets.
std::array<std::uintptr_t, kSiteDepth> ModulePath(const LayerState& state, ULONG skip) {
    std::array<std::uintptr_t, kSiteDepth> path{};
    void* frames[16] = {};
    const USHORT count = RtlCaptureStackBackTrace(skip + 1, 16, frames, nullptr);
    std::size_t depth = 0;
    for (USHORT i = 0; i < count && depth < kSiteDepth; ++i) {
        const auto address = reinterpret_cast<std::uintptr_t>(frames[i]);
        if (address < state.moduleBase || address - state.moduleBase >= state.moduleSize) continue;
        path[depth++] = address - state.moduleBase;
    }
    return path;
}

// One spelling of a path for every way the module and a test may write it.
std::string FileKey(const char* path) {
    std::string key = path ? path : "";
    for (char& c : key) {
        if (c == '/') c = '\\';
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return key;
}

}  // namespace

const char* KindName(ObjectKind kind) {
    // clang-format off
    static constexpr const char* kNames[kObjectKindCount] = {
        "Icon", "Bitmap", "DeviceContext", "File", "Mapping", "View", "RegistryKey", "HeapBlock", "LocalBlock"};
    // clang-format on
    return kNames[static_cast<std::size_t>(kind)];
}

bool CallSite::operator<(const CallSite& other) const {
    const int byName = std::strcmp(function, other.function);
    return path < other.path || (path == other.path && byName < 0);
}
bool CallSite::operator==(const CallSite& other) const {
    return path == other.path && std::strcmp(function, other.function) == 0;
}

std::string Describe(const CallSite& site) {
    std::string text = std::string(site.function) + " at";
    for (std::size_t i = 0; i < kSiteDepth && site.path[i]; ++i) text += (i ? " < +" : " +") + Hex(site.path[i]);
    return text;
}

Balance LiveObjects() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    Balance live{};
    for (const auto& [key, kind] : state.live) ++live[static_cast<std::size_t>(kind)];
    return live;
}

std::string DescribeLive(const Balance& live) {
    std::string text;
    for (std::size_t kind = 0; kind < kObjectKindCount; ++kind) {
        if (live[kind] == 0) continue;
        if (!text.empty()) text += ", ";
        text += std::string(KindName(static_cast<ObjectKind>(kind))) + " " + std::to_string(live[kind]);
    }
    return text;
}

Balance MadeObjects() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    return state.made;
}

void RememberDestroyed(bool on) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    state.rememberDestroyed = on;
    if (!on) state.destroyed.clear();
}

std::vector<LiveObject> LiveObjectList() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    std::vector<LiveObject> objects;
    for (const auto& [key, kind] : state.live) {
        const auto made = state.madeAt.find(key);
        objects.push_back({kind, made == state.madeAt.end() ? CallSite{KindName(kind), {}} : made->second});
    }
    return objects;
}

std::vector<std::string> BookProblems() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    return state.problems;
}

void HandedOut(ObjectKind kind, const void* object) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    const auto found = state.live.find(KeyOf(kind, object));
    if (found == state.live.end() || found->second != kind) {
        state.problems.push_back(std::string("handed out a ") + KindName(kind) +
                                 " the books do not hold: " + Hex(reinterpret_cast<std::uintptr_t>(object)));
        return;
    }
    state.madeAt.erase(found->first);
    state.live.erase(found);
}

std::uint64_t CallCount() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    return state.calls;
}

void RecordTrace(bool on) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    state.tracing = on;
    state.trace.clear();
}

const std::vector<CallSite>& Trace() { return State().trace; }

void ForgetLiveObjects() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    state.live.clear();
    state.madeAt.clear();
}

void BeginCounting(std::uint64_t armAt, bool trace) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    state.calls = 0;
    state.tracing = trace;
    state.trace.clear();
    state.armedAt = armAt;
    state.fired = false;
    state.firedCall = CallSite{};
    state.standingFailed = 0;
}

void FailFirstCallsOf(const char* function, unsigned calls) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    state.standing = function;
    state.standingCalls = calls;
    state.standingFailed = 0;
}

void FailFirstCallOf(const char* function) { FailFirstCallsOf(function, 1); }

void ArmAt(std::uint64_t k) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    state.armedAt = k;
    if (k == 0) return;
    state.fired = false;
    state.firedCall = CallSite{};
}

PausedCounting::PausedCounting() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    ++state.paused;
}

PausedCounting::~PausedCounting() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    --state.paused;
}

bool Fired() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    return state.fired;
}

CallSite FiredCall() {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    return state.firedCall;
}

void AddAttributes(const std::string& path, DWORD bits) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    if (bits == 0) {
        state.addedAttributes.erase(FileKey(path.c_str()));
    } else {
        state.addedAttributes[FileKey(path.c_str())] = bits;
    }
}

std::uint64_t FileOpens(const std::string& path) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    const auto found = state.opens.find(FileKey(path.c_str()));
    return found == state.opens.end() ? 0 : found->second;
}

namespace detail {

DWORD AddedAttributes(const char* path) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    if (state.addedAttributes.empty()) return 0;
    const auto found = state.addedAttributes.find(FileKey(path));
    return found == state.addedAttributes.end() ? 0 : found->second;
}

void Opened(const char* path) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    ++state.opens[FileKey(path)];
}

void SetModuleRange(std::uintptr_t base, std::size_t size) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    state.moduleBase = base;
    state.moduleSize = size;
    state.calls = 0;
    state.armedAt = 0;
    state.fired = false;
    state.paused = 0;
    state.trace.clear();
    state.live.clear();
    state.madeAt.clear();
    state.made = Balance{};
    state.rememberDestroyed = true;
    state.destroyed.clear();
    state.problems.clear();
    state.addedAttributes.clear();
    state.opens.clear();
}

bool ShouldFail(const char* function, const void* returnAddress) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    if (state.paused > 0) return false;
    // Not counted: a k names the same call in every run, the counting run's included.
    if (state.standing && state.standingFailed < state.standingCalls && std::strcmp(function, state.standing) == 0) {
        ++state.standingFailed;
        return true;
    }
    CallSite site{function, {}};
    site.path[0] = reinterpret_cast<std::uintptr_t>(returnAddress) - state.moduleBase;
    if (state.tracing || state.calls + 1 == state.armedAt) site.path = ModulePath(state, 1);
    ++state.calls;
    if (state.tracing) state.trace.push_back(site);
    if (state.armedAt == 0 || state.calls != state.armedAt) return false;
    state.fired = true;
    state.firedCall = site;
    return true;
}

void Created(ObjectKind kind, const void* object) {
    if (!object) return;
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    state.destroyed.erase({object, kind});
    const BookKey key = KeyOf(kind, object);
    state.madeAt[key] = CallSite{KindName(kind), ModulePath(state, 1)};
    ++state.made[static_cast<std::size_t>(kind)];
    const auto [where, fresh] = state.live.emplace(key, kind);
    if (!fresh) {
        state.problems.push_back(std::string("the system handed out a live ") + KindName(where->second) +
                                 " again as a " + KindName(kind) + ": " +
                                 Hex(reinterpret_cast<std::uintptr_t>(object)));
        where->second = kind;
    }
}

void Reissued(const void* object) {
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    for (std::size_t kind = 0; kind < kObjectKindCount; ++kind)
        state.destroyed.erase({object, static_cast<ObjectKind>(kind)});
}

void Destroyed(std::initializer_list<ObjectKind> kinds, const void* object) {
    if (!object) return;
    LayerState& state = State();
    const std::lock_guard<std::mutex> guard(state.lock);
    // The kinds one call destroys share a space.
    const auto found = state.live.find(KeyOf(*kinds.begin(), object));
    if (found == state.live.end()) {
        for (const ObjectKind kind : kinds) {
            if (state.destroyed.count({object, kind}))
                state.problems.push_back(std::string(KindName(kind)) +
                                         " destroyed twice: " + Hex(reinterpret_cast<std::uintptr_t>(object)));
        }
        return;
    }
    if (std::find(kinds.begin(), kinds.end(), found->second) == kinds.end()) {
        state.problems.push_back(std::string("a ") + KindName(found->second) +
                                 " destroyed as another kind: " + Hex(reinterpret_cast<std::uintptr_t>(object)));
    }
    if (state.rememberDestroyed) state.destroyed.insert({object, found->second});
    state.madeAt.erase(found->first);
    state.live.erase(found);
}

}  // namespace detail
}  // namespace faults
