// Everything of the example map that is not a road: landmarks, the vehicle, what changes on the road, the parking
// garage, and the time zone.

#include <algorithm>
#include <string>

#include "examples/map/map.h"
#include "examples/map/parts.h"

namespace example_map {

using namespace datatypes;

namespace {

constexpr std::uint64_t kNow = 1'704'103'200'000;  // milliseconds since 1970; the same in each run
constexpr std::uint64_t kHour = 3'600'000;

DT_landmark Landmark(std::uint8_t kind, std::uint32_t value, std::uint32_t metresEast) {
  DT_landmarkObjectDetails details;
  details.member0 = 1;                    // 1: a pole at the side of the road
  details.member1 = Triple{80, 80, 300};  // its width, depth and height in centimetres
  details.member2 = value;                // what it shows
  DT_landmark landmark;
  landmark.member0 = kind;  // 1: a traffic light, 2: a sign with a speed limit
  landmark.member1 = Boxed(std::vector{details});
  landmark.member2 = Point(metresEast, 0);  // where it stands
  return landmark;
}

/// From the vehicle's link to the last one.
DT_path WayToTheGarage(LinkNumber first) {
  std::vector<DT_path::Element> elements;
  for (LinkNumber link = first; link <= kMainRoadLinks; ++link) {
    DT_path::Element element;
    element.member1 = Reference(ObjectKind::kLink, link);
    elements.push_back(std::move(element));
  }
  DT_path path;
  path.member2 = 1;                                                          // 1: the most probable path
  path.member3 = static_cast<std::uint32_t>(elements.size()) * kLinkLength;  // its length in metres
  path.member1 = Boxed(std::move(elements));
  return path;
}

DynamicContent OnTheRoad(AttributeKind kind, std::uint32_t value, LinkNumber link, std::uint64_t hours) {
  DynamicContent content;
  DT_referencedAttribute attribute;
  attribute.member0 = Range(Reference(ObjectKind::kLink, link), 0, kLinkLength);
  attribute.member1 = Attribute(kind, value);
  content.member0 = std::move(attribute);
  content.member1 = kNow + hours * kHour;  // how long it holds, in milliseconds since 1970
  content.member3 = 90;                    // how sure this is, in per cent
  return content;
}

constexpr std::uint32_t kGarageWidth = 60;   // metres, from south to north
constexpr std::uint32_t kGarageLength = 40;  // from west to east
constexpr std::uint16_t kPlacesPerRow = 20;
constexpr std::uint32_t kRowsPerLevel = 3;
constexpr std::uint32_t kLevels = 2;

DT_reference LevelReference(std::uint32_t level) { return Reference(ObjectKind::kGarageSection, level); }

/// The walls of the garage, which begins where the main road ends.
DT_polyline Walls() {
  constexpr std::uint32_t kEnd = kMainRoadLength + kGarageLength;
  DT_polyline walls;
  walls.member0 = Boxed(std::vector{Position(kMainRoadLength, 0), Position(kEnd, 0), Position(kEnd, kGarageWidth),
                                    Position(kMainRoadLength, kGarageWidth), Position(kMainRoadLength, 0)});
  return walls;
}

DT_parkingGarageSection Level(std::uint32_t level) {
  std::vector<DT_parkingRow> rows;
  for (std::uint32_t row = 0; row < kRowsPerLevel; ++row) {
    const std::uint32_t metres = 5 + row * 18;
    rows.push_back({PlaceOn(LevelReference(level), metres),                      // where it begins
                    PlaceOn(LevelReference(level), metres + kGarageLength - 5),  // where it ends
                    kPlacesPerRow});
  }
  DT_parkingGarageSection section;
  section.member0 = LevelReference(level);
  section.member1 = "Level " + std::to_string(level);
  section.member2 = Walls();
  section.member3 = DT_referenceList{std::vector{LevelReference(kLevels - 1 - level)}};  // where its ramp leads to
  section.member4 = DT_parkingRowList{std::move(rows)};
  section.member5 = Boxed(std::vector{PlaceOn(LevelReference(level), 0)});  // the places of its ramps
  return section;
}

DT_timezoneInformation_struct::DateTime OneOClock(std::uint32_t year, std::uint8_t month, std::uint16_t day) {
  DT_timezoneInformation_struct::DateTime time;
  time.member0 = year;
  time.member1 = month;
  time.member2 = day;
  time.member3 = 1;  // hours, minutes and seconds, in universal time
  time.member4 = 0;
  time.member5 = 0;
  return time;
}

}  // namespace

std::vector<DT_positioningObjectsLayer_struct> PositioningObjectsLayer() {
  std::vector<DT_landmark> landmarks;
  for (LinkNumber link = 1; link <= kMainRoadLinks; ++link) {
    if (link == 1 || SpeedLimit(link) != SpeedLimit(link - 1)) {
      landmarks.push_back(Landmark(2, SpeedLimit(link), MetresBefore(link)));
    }
    if (IsInTown(link) && HasSideRoad(link)) {
      landmarks.push_back(Landmark(1, 0, MetresBefore(link) + kLinkLength));
    }
  }
  return MakeLayer<DT_positioningObjectsLayer_struct>(4, std::move(landmarks));
}

std::vector<DT_egoPositionLayer_struct> EgoPositionLayer(std::uint32_t metres) {
  const LinkNumber link = std::min(metres / kLinkLength + 1, kMainRoadLinks);
  EgoPosition vehicle;
  vehicle.member0 = kNow;                                                                      // when it was there
  vehicle.member1 = DT_pose{Position(metres, 0), 90};                                          // heading east
  vehicle.member2 = PlaceOn(Reference(ObjectKind::kLink, link), metres - MetresBefore(link));  // where on which link
  vehicle.member3 = 95;                                                                        // how sure, in per cent
  vehicle.member4 = SpeedLimit(link);                                                          // kilometres per hour
  vehicle.member5 = WayToTheGarage(link);
  return MakeLayer<DT_egoPositionLayer_struct>(5, std::vector{vehicle});
}

std::vector<DT_dynamicContentLayer_struct> DynamicContentLayer() {
  return MakeLayer<DT_dynamicContentLayer_struct>(
      6, std::vector{OnTheRoad(AttributeKind::kRoadWorks, 60, 61, 48),  // 60 kilometres per hour there
                     OnTheRoad(AttributeKind::kRoadWorks, 60, 62, 48),
                     OnTheRoad(AttributeKind::kIce, 1, 90, 6),             // 1: single places
                     OnTheRoad(AttributeKind::kTrafficJam, 15, 120, 1)});  // 15 kilometres per hour
}

std::vector<DT_automatedParkingLayer_struct> AutomatedParkingLayer() {
  DT_parkingArea all;
  all.member0 = Reference(ObjectKind::kGarage, 1);
  all.member1 = Walls();
  DT_parkingGarage::Areas areas;
  areas.member0 = Boxed(std::vector{all});
  areas.member1 = static_cast<std::uint16_t>(kLevels * kRowsPerLevel * kPlacesPerRow);  // its places
  DT_parkingGarage garage;
  garage.member0 = Boxed(std::vector{Level(0), Level(1)});
  garage.member1 = std::move(areas);
  garage.member2 = Boxed(std::vector{Point(kMainRoadLength, 0)});  // its entrances
  garage.member3 = Boxed(std::uint32_t{210});                      // the height that fits, in centimetres
  garage.member4 = Reference(ObjectKind::kLink, kMainRoadLinks);   // the link that leads there
  return MakeLayer<DT_automatedParkingLayer_struct>(7, std::vector{garage});
}

std::vector<DT_timezoneInformation_struct> TimezoneInformation() {
  DT_timezoneInformation_struct::TimeZone zone;
  zone.member0 = Boxed(std::uint32_t{60});  // minutes ahead of universal time
  zone.member1 = OneOClock(2024, 3, 31);    // when summer time begins
  zone.member2 = OneOClock(2024, 10, 27);   // and when it ends
  DT_timezoneInformation_struct information;
  information.member0 = MapNumber();
  information.member1 = std::move(zone);
  return {information};
}

}  // namespace example_map
