// Runs a fuzz target on the files of folders, without a fuzzer: replay FOLDER...
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
extern "C" [[gnu::weak]] int LLVMFuzzerInitialize(int* count, char*** arguments);

int main(int count, char** folders) {
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&count, &folders);
  int files = 0;
  for (int i = 1; i < count; ++i)
    for (const auto& entry : std::filesystem::directory_iterator(folders[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
      std::printf("%s\n", entry.path().filename().c_str());
      std::fflush(stdout);  // the last name printed is the one that fails
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++files;
    }
  std::printf("%d inputs\n", files);
  return files > 0 ? 0 : 1;
}
