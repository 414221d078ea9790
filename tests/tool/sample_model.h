#pragma once

/// The model of sample::Everything (tests/serialization/sample_records.h), as an interface of one field.
namespace sample {

inline constexpr const char* kModel = R"({
  "name": "sample", "role": "consumed", "araServiceId": 1, "serviceId": "0x1234",
  "version": {"major": 1, "minor": 0},
  "fields": [{"name": "everything", "getter": "0x4010", "record": "Everything"}],
  "headers": [{"name": "records", "records": [
    {"name": "Inner", "members": [{"id": 0, "name": "member0", "type": "uint32"}]},
    {"name": "Everything", "members": [
      {"id": 9, "name": "member9", "type": "uint64"},
      {"id": 0, "name": "member0", "type": "bool"},
      {"id": 1, "name": "member1", "type": "int16"},
      {"id": 2, "name": "member2", "type": "float"},
      {"id": 3, "name": "member3", "type": "double"},
      {"id": 4, "name": "member4", "type": "uint8"},
      {"id": 5, "name": "member5", "type": "string"},
      {"id": 6, "name": "member6", "type": "bytes<3>"},
      {"id": 7, "name": "member7", "type": "sequence<uint16>"},
      {"id": 8, "name": "member8", "type": "Inner"},
      {"id": 4095, "name": "member4095", "type": "sequence<Inner>"}]}]}]})";

}  // namespace sample
