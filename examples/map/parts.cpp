#include "examples/map/parts.h"

#include <utility>

namespace example_map {

using namespace datatypes;

namespace {

// Ten millionths of a degree, and how many of them a metre is at this latitude.
constexpr std::uint32_t kOriginLatitude = 520'000'000;
constexpr std::uint32_t kOriginLongitude = 100'000'000;
constexpr std::uint32_t kPerMetreNorth = 90;
constexpr std::uint32_t kPerMetreEast = 146;
constexpr std::uint32_t kHeight = 120;  // metres; the example is flat

/// A speed limit that holds where no other is given.
DT_generalSpeedLimit GeneralSpeedLimit(std::uint32_t kilometresPerHour, std::uint8_t roadKind) {
  DT_generalSpeedLimit limit;
  limit.member0 = Boxed(kilometresPerHour);
  limit.member1 = roadKind;  // 1 in a town, 2 outside of one
  return limit;
}

/// The same, but only when it is wet.
DT_generalSpeedLimit SpeedLimitInRain(std::uint32_t kilometresPerHour, std::uint8_t roadKind) {
  DT_constraint rain;
  rain.member1 = DT_constraint::Flags{1, 0, 0, 0};  // in rain, in snow, in fog, at night
  DT_generalSpeedLimit limit = GeneralSpeedLimit(kilometresPerHour, roadKind);
  limit.member3 = Boxed(std::vector{rain});
  return limit;
}

DT_metaData MetaData() {
  DT_metaData map;
  map.member0.emplace("Example map");        // its name
  map.member1.emplace("made by hand");       // where it is from
  map.member2 = DT_metaData::Version{1, 2};  // its version
  DT_metaData::Region region;
  region.member0 = Boxed(std::uint32_t{276});      // the country's number
  region.member1 = 1;                              // 1: a country
  map.member3 = Boxed(std::vector{region});        // where it is valid
  map.member4 = Boxed(std::uint32_t{20'240'101});  // the day it was made
  map.member5 = Boxed(std::vector{GeneralSpeedLimit(50, 1), GeneralSpeedLimit(100, 2), SpeedLimitInRain(80, 2)});
  return map;
}

}  // namespace

DT_reference Reference(ObjectKind kind, std::uint64_t number) {
  DT_reference reference;
  reference.member0 = static_cast<std::uint8_t>(kind);
  reference.member1 = number;
  return reference;
}

DT_rangedReference Range(DT_reference object, std::uint32_t from, std::uint32_t to) {
  DT_rangedReference range;
  range.member0 = std::move(object);
  range.member1 = from;  // metres from its beginning
  range.member2 = to;
  return range;
}

DT_relativeCoordinate PlaceOn(DT_reference object, std::uint32_t metres) {
  DT_relativeCoordinate place;
  place.member0 = std::move(object);
  place.member1 = metres;  // from its beginning
  return place;
}

DT_attribute Attribute(AttributeKind kind, std::uint32_t value) {
  DT_attribute attribute;
  attribute.member0 = static_cast<std::uint16_t>(kind);
  attribute.member1 = value;
  return attribute;
}

DT_wgs84Coordinate Position(std::uint32_t metresEast, std::uint32_t metresNorth) {
  DT_wgs84Coordinate position;
  position.member0 = kOriginLatitude + metresNorth * kPerMetreNorth;
  position.member1 = kOriginLongitude + metresEast * kPerMetreEast;
  position.member2 = kHeight;
  return position;
}

Triple Point(std::uint32_t metresEast, std::uint32_t metresNorth) {
  const DT_wgs84Coordinate position = Position(metresEast, metresNorth);
  return {position.member0, position.member1, position.member2};
}

LayerBytes MapNumber() {
  return {0x3d, 0x5e, 0x0a, 0x91, 0x7c, 0x24, 0x4f, 0x16, 0x8b, 0x03, 0xd2, 0x6f, 0x58, 0x41, 0xe7, 0x9c};
}

DT_layerInfo LayerInfo(std::uint16_t kind, std::size_t contentCount) {
  DT_layerInfo::Entry entry;
  entry.member0 = kind;                                      // which layer
  entry.member1 = std::uint16_t{1};                          // the version of its contents
  entry.member2 = static_cast<std::uint32_t>(contentCount);  // how many they are
  DT_layerInfo info;
  info.member0 = Boxed(std::vector{entry});
  info.member1 = Boxed(std::vector{MetaData()});
  return info;
}

void Fill(kro::services::psd2::skeleton::Psd2Skeleton& skeleton) {
  const auto fill = [](auto& field, auto&& value) {
    field.Update(std::move(value));
    field.ServeCurrentValue();
  };
  fill(skeleton.linkLayerLongRange, LinkLayerLongRange());
  fill(skeleton.linkLayerShortRange, LinkLayerShortRange());
  fill(skeleton.laneLayer, LaneLayer());
  fill(skeleton.positioningObjectsLayer, PositioningObjectsLayer());
  fill(skeleton.egoPositionLayer, EgoPositionLayer(0));
  fill(skeleton.dynamicContentLayer, DynamicContentLayer());
  fill(skeleton.automatedParkingLayer, AutomatedParkingLayer());
  fill(skeleton.timezoneInformation, TimezoneInformation());
}

}  // namespace example_map
