// Writes the inputs that a run begins with, one file each: fuzz_seeds SOURCE TARGET. Of each field a made-up value, in
// both forms; and what is in SOURCE, by hand.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/fields.h"
#include "tests/support/hex.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/values/moving_value.h"
#include "tools/tarn7/values/payload_text.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;

/// The seeds of one harness, in a folder of its name.
class Folder {
 public:
  explicit Folder(const fs::path& path) : path_(path) { fs::create_directories(path); }

  void Add(const Bytes& seed) {
    std::ofstream file(path_ / std::to_string(count_++), std::ios::binary);
    file.write(reinterpret_cast<const char*>(seed.data()), static_cast<std::streamsize>(seed.size()));
    if (!file.flush()) {
      throw std::runtime_error("cannot write to " + path_.string());
    }
  }

 private:
  fs::path path_;
  std::size_t count_ = 0;
};

Bytes Chosen(std::size_t field, const Bytes& rest) {
  Bytes seed{static_cast<unsigned char>(field)};
  seed.insert(seed.end(), rest.begin(), rest.end());
  return seed;
}

Bytes BytesOf(const std::string& text) { return {text.begin(), text.end()}; }

/// The lines but for comments. An empty one ends a seed of several packets.
std::vector<std::string> Lines(const fs::path& path) {
  std::ifstream file(path);
  if (!file) {
    throw std::runtime_error("cannot read " + path.string());
  }
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    line.resize(std::min(line.size(), line.find('#')));
    lines.push_back(line);
  }
  return lines;
}

void WritePackets(const fs::path& source, const fs::path& target) {
  Folder folder(target);
  Bytes seed;
  for (const std::string& line : Lines(source)) {
    Bytes packet = support::Bytes(line);
    if (packet.empty()) {
      if (!seed.empty()) {
        folder.Add(seed);
      }
      seed.clear();
      continue;
    }
    const std::size_t length = packet.size() - 1;  // the first byte is the control byte
    packet.insert(packet.begin() + 1,
                  {static_cast<unsigned char>(length >> 8U), static_cast<unsigned char>(length & 0xFFU)});
    seed.insert(seed.end(), packet.begin(), packet.end());
  }
  folder.Add(seed);
}

void WriteFieldValues(const fs::path& source, const fs::path& target) {
  Folder decoder(target / "decoder");
  Folder json(target / "json");
  const auto hex_lines = Lines(source / "decoder.hex");
  const auto json_lines = Lines(source / "json.txt");
  tarn7::tool::ValueSource values;
  std::size_t number = 0;
  const tarn7::tool::InterfaceTable interfaces;
  fuzz::ForEachField([&](const std::string& address, auto) {
    const tarn7::tool::ValueType& type = *interfaces.FindAddress(address).field->type;
    const Bytes value = values.First(type);
    json.Add(Chosen(number, BytesOf(tarn7::tool::PayloadText(type, value))));
    decoder.Add(Chosen(number, value));
    for (const std::string& line : hex_lines) {
      decoder.Add(Chosen(number, support::Bytes(line)));
    }
    ++number;
  });
  for (const std::string& line : json_lines) {
    json.Add(BytesOf(line));
  }
}

void WriteModels(const fs::path& target) {
  Folder folder(target / "model");
  for (const std::string_view model : tarn7::tool::BuiltInModels()) {
    folder.Add(BytesOf(std::string(model)));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: fuzz_seeds SOURCE TARGET\n";
    return 1;
  }
  try {
    const fs::path source(argv[1]);
    const fs::path target(argv[2]);
    WriteFieldValues(source, target);
    WriteModels(target);
    Folder error_code(target / "error_code");
    for (const std::string& line : Lines(source / "error_code.hex")) {
      error_code.Add(support::Bytes(line));
    }
    for (const char* const name : {"discovery", "transfer", "node"}) {
      WritePackets(source / (std::string(name) + ".packets"), target / name);
    }
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "fuzz_seeds: " << error.what() << '\n';
    return 1;
  }
}
