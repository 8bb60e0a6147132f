// Runs a fuzz target on the files of folders, without a fuzzer: replay FOLDER...
// In C's functions, which the memory sanitizer knows.
#include <dirent.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
extern "C" [[gnu::weak]] int LLVMFuzzerInitialize(int* count, char*** arguments);

namespace {

std::vector<std::uint8_t> contents(const std::string& path) {
  std::vector<std::uint8_t> bytes;
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return bytes;
  for (int octet; (octet = std::fgetc(file)) != EOF;) bytes.push_back(static_cast<std::uint8_t>(octet));
  std::fclose(file);
  return bytes;
}

}  // namespace

int main(int count, char** folders) {
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&count, &folders);
  int files = 0;
  for (int i = 1; i < count; ++i) {
    DIR* const folder = opendir(folders[i]);
    if (folder == nullptr) return std::printf("no folder %s\n", folders[i]), 1;
    while (const dirent* entry = readdir(folder)) {
      if (entry->d_name[0] == '.') continue;
      std::printf("%s\n", entry->d_name);
      std::fflush(stdout);  // the last name printed is the one that fails
      const std::vector<std::uint8_t> bytes = contents(std::string(folders[i]) + '/' + entry->d_name);
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
      ++files;
    }
    closedir(folder);
  }
  std::printf("%d inputs\n", files);
  return files > 0 ? 0 : 1;
}
