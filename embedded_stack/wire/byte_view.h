#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vsomeip_v3::embedded {

// Bytes that belong to somebody else. Every accessor is safe for any argument.
class ByteView {
 public:
  ByteView() = default;
  ByteView(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  ByteView(const std::vector<std::uint8_t>& bytes) : data_(bytes.data()), size_(bytes.size()) {}  // NOLINT: a view

  const std::uint8_t* data() const { return data_; }
  std::size_t size() const { return size_; }
  const std::uint8_t* begin() const { return data_; }
  const std::uint8_t* end() const { return data_ + size_; }

  // The part from `offset` on, at most `count` bytes long; empty where there is nothing.
  ByteView Sub(std::size_t offset, std::size_t count = SIZE_MAX) const {
    if (offset >= size_) return {};
    const std::size_t rest = size_ - offset;
    return {data_ + offset, count < rest ? count : rest};
  }

 private:
  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
};

// Reads big-endian numbers one after the other. Reading past the end yields 0 and sets Failed() for good.
class ByteReader {
 public:
  explicit ByteReader(ByteView view) : view_(view) {}

  std::uint8_t U8() { return static_cast<std::uint8_t>(Number(1)); }
  std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
  std::uint32_t U24() { return Number(3); }
  std::uint32_t U32() { return Number(4); }

  ByteView Take(std::size_t count) {
    if (count > view_.size()) {
      failed_ = true;
      view_ = {};
      return {};
    }
    const ByteView taken = view_.Sub(0, count);
    view_ = view_.Sub(count);
    return taken;
  }

  std::size_t Remaining() const { return view_.size(); }
  bool Failed() const { return failed_; }

 private:
  std::uint32_t Number(std::size_t width) {
    std::uint32_t value = 0;
    for (const std::uint8_t byte : Take(width)) value = (value << 8U) | byte;
    return value;
  }

  ByteView view_;
  bool failed_ = false;
};

// Appends big-endian numbers to a vector that belongs to the caller.
class ByteWriter {
 public:
  explicit ByteWriter(std::vector<std::uint8_t>& out) : out_(out) {}

  void U8(std::uint32_t value) { out_.push_back(static_cast<std::uint8_t>(value)); }
  void U16(std::uint32_t value) { U8(value >> 8U), U8(value); }
  void U24(std::uint32_t value) { U8(value >> 16U), U16(value); }
  void U32(std::uint32_t value) { U16(value >> 16U), U16(value); }
  void Bytes(ByteView bytes) { out_.insert(out_.end(), bytes.begin(), bytes.end()); }

 private:
  std::vector<std::uint8_t>& out_;
};

}  // namespace vsomeip_v3::embedded
