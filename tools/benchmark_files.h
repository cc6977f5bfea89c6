// The files the benchmarks work on, written by the benchmarks themselves into a temporary
// folder: connection files with drawn icons, the same images as an .ico file, shortcuts,
// and where the built DLL is.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "connection/icon_stream.h"

namespace benchmark_files {

// The DLL of this build: VQC_BENCHMARK_DLL when set, else ..\shellext\vqcprop64.dll from
// the program's own folder.
std::string BuiltDllPath();

std::wstring Wide(const std::string& text);

// A fresh folder under %TEMP%, deleted with everything in it at the end.
class Folder {
public:
    explicit Folder(const std::string& name);
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string Path(const std::string& file) const { return path_ + "\\" + file; }
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

// A square image of `size` pixels at 1, 4, 8, 24 or 32 bits per pixel, filled with a
// pattern (and, at 32 bits, varying alpha).
IconImage PatternImage(int size, int bitsPerPixel);
// The largest square 32-bit image whose block the reader still decodes.
IconImage LargestAcceptedImage();

// A typical option line with the images as its -I icon; when the file would be shorter
// than padTo bytes, its -C command is lengthened to reach it. Returns the file's size.
std::size_t WriteConnectionFile(const std::string& path, const std::vector<IconImage>& images,
                                std::size_t padTo);
// The images as an .ico file.
void WriteIconFile(const std::string& path, const std::vector<IconImage>& images);
// A shortcut to notepad whose icon is icon `index` of `iconPath`.
void WriteShortcut(const std::string& path, const std::string& iconPath, int index);

void WriteWholeFile(const std::string& path, const std::string& content);

}  // namespace benchmark_files
