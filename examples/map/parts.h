#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "examples/map/map.h"

/// What the layers of the example map have in common.
namespace example_map {

/// The number of a link: the main road's are 1 to 150, from west to east.
using LinkNumber = std::uint32_t;

constexpr LinkNumber kFirstSideRoad = 1001;  // the side roads: 1001 to 1050
constexpr std::uint32_t kLinksPerSideRoad = 3;
constexpr std::uint32_t kSideRoads = kMainRoadLinks / kLinksPerSideRoad;
constexpr LinkNumber kShortRangeLinks = 20;  // of the main road: two kilometres

/// What a reference points to.
enum class ObjectKind : std::uint8_t { kLink = 1, kLane, kLaneGroup, kGarage, kGarageSection };

/// What an attribute says of an object.
enum class AttributeKind : std::uint16_t { kSurface = 1, kSlope, kRoadWorks, kIce, kTrafficJam };

/// A record around one value, as many members have it.
template <typename T>
datatypes::Box<T> Boxed(T value) {
  datatypes::Box<T> box;
  box.member0 = std::move(value);
  return box;
}

datatypes::DT_reference Reference(ObjectKind kind, std::uint64_t number);
datatypes::DT_rangedReference Range(datatypes::DT_reference object, std::uint32_t from, std::uint32_t to);
datatypes::DT_relativeCoordinate PlaceOn(datatypes::DT_reference object, std::uint32_t metres);
datatypes::DT_attribute Attribute(AttributeKind kind, std::uint32_t value);

/// A position on the globe, by its distance from the beginning of the main road.
datatypes::DT_wgs84Coordinate Position(std::uint32_t metresEast, std::uint32_t metresNorth);
/// The same as a record of three values, which other members hold.
datatypes::Triple Point(std::uint32_t metresEast, std::uint32_t metresNorth);
/// Where a link of the main road begins.
constexpr std::uint32_t MetresBefore(LinkNumber mainRoadLink) { return (mainRoadLink - 1) * kLinkLength; }

constexpr bool IsInTown(LinkNumber mainRoadLink) { return mainRoadLink <= 50 || mainRoadLink > 130; }
constexpr bool HasSideRoad(LinkNumber mainRoadLink) { return mainRoadLink % kLinksPerSideRoad == 0; }
/// In kilometres per hour.
constexpr std::uint32_t SpeedLimit(LinkNumber mainRoadLink) { return IsInTown(mainRoadLink) ? 50 : 100; }

/// The sixteen bytes that every layer starts with. In this example they are the map's number.
datatypes::LayerBytes MapNumber();
/// What a layer says of itself: how many contents of what kind, and the map's name, version and general speed limits.
datatypes::DT_layerInfo LayerInfo(std::uint16_t kind, std::size_t contentCount);

/// A layer of one record with the contents.
template <typename Layer, typename Content>
std::vector<Layer> MakeLayer(std::uint16_t kind, std::vector<Content> contents) {
  Layer layer;
  layer.member0 = MapNumber();
  layer.layerInfo = LayerInfo(kind, contents.size());
  layer.member1 = std::move(contents);
  return {std::move(layer)};
}

}  // namespace example_map
