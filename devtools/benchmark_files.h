// The files the benchmarks work on, written by the benchmarks themselves (into a
// test_support::TempFolder): connection files with drawn icons, the same images as an .ico
// file, shortcuts, and where the built DLL is.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "connection/icon_stream.h"
#include "tests/support/test_icons.h"

namespace benchmark_files {

// The DLL of this build: VQC_BENCHMARK_DLL when set, else ..\shellext\vqcprop64.dll from
// the program's own folder.
std::string BuiltDllPath();

// The largest square 32-bit image whose block the reader still decodes.
IconImage LargestAcceptedImage();

// A typical option line with the images as its -I icon; when the file would be shorter
// than padTo bytes, its -C command is lengthened to reach it. Returns the file's size.
std::size_t WriteConnectionFile(const std::string& path, const std::vector<IconImage>& images, std::size_t padTo);
// The images as an .ico file.
void WriteIconFile(const std::string& path, const std::vector<IconImage>& images);
// A shortcut to notepad whose icon is icon `index` of `iconPath`.
void WriteShortcut(const std::string& path, const std::string& iconPath, int index);

void WriteWholeFile(const std::string& path, const std::string& content);

}  // namespace benchmark_files
