// The links of the example map and their lanes.

#include "examples/map/map.h"
#include "examples/map/parts.h"

namespace example_map {

using namespace datatypes;

namespace {

constexpr std::uint8_t kMainRoad = 1;
constexpr std::uint8_t kSideRoad = 2;
constexpr std::uint32_t kEast = 90;  // degrees, clockwise from north
constexpr std::uint32_t kNorth = 0;

DT_reference LinkReference(LinkNumber number) { return Reference(ObjectKind::kLink, number); }

/// The side road that begins where this link of the main road ends.
LinkNumber SideRoadAfter(LinkNumber mainRoadLink) { return kFirstSideRoad + mainRoadLink / kLinksPerSideRoad - 1; }

/// What all links have.
DT_link MakeLink(LinkNumber number, std::uint8_t kind, std::uint32_t heading, std::uint32_t speedLimit) {
  DT_link link;
  link.member0 = kind;                // main road or side road
  link.member3 = Boxed(number);       // its number
  link.member5 = 2;                   // its lanes: one there, one back
  link.member6 = Boxed(kLinkLength);  // its length in metres
  link.member7 = Boxed(heading);      // its direction in degrees
  link.member12 = Boxed(speedLimit);  // in kilometres per hour
  return link;
}

DT_link MainRoadLink(LinkNumber number) {
  DT_link link = MakeLink(number, kMainRoad, kEast, SpeedLimit(number));
  std::vector<DT_reference> next;
  if (number < kMainRoadLinks) {
    next.push_back(LinkReference(number + 1));
  }
  if (HasSideRoad(number)) {
    next.push_back(LinkReference(SideRoadAfter(number)));
  }
  link.member1 = Boxed(std::move(next));  // the links that it leads to
  if (number > 1) {
    link.member2 = Boxed(std::vector{LinkReference(number - 1)});  // the links that lead to it
  }
  if (number <= kShortRangeLinks) {
    link.member4 = Reference(ObjectKind::kLaneGroup, number);  // its lanes, in the lane layer
  }
  link.member10 = IsInTown(number) ? 1 : 0;  // whether it is in a town
  return link;
}

DT_link SideRoadLink(LinkNumber mainRoadLink) {
  DT_link link = MakeLink(SideRoadAfter(mainRoadLink), kSideRoad, kNorth, 30);
  link.member2 = Boxed(std::vector{LinkReference(mainRoadLink)});  // it leads nowhere: no member1
  link.member10 = IsInTown(mainRoadLink) ? 1 : 0;
  return link;
}

/// The first `mainRoadLinks` links of the main road, and the side roads that branch off there.
std::vector<DT_link> Links(LinkNumber mainRoadLinks) {
  std::vector<DT_link> links;
  for (LinkNumber number = 1; number <= mainRoadLinks; ++number) {
    links.push_back(MainRoadLink(number));
    if (HasSideRoad(number)) {
      links.push_back(SideRoadLink(number));
    }
  }
  return links;
}

/// Half of a link, from one end to its middle or from there to the other.
DT_link::Segment Half(std::uint32_t from, std::uint32_t heading) {
  DT_link::Segment segment;
  segment.member0 = from;                     // metres from the link's beginning
  segment.member1 = kLinkLength / 2;          // its length in metres
  segment.member2 = heading;                  // its direction in degrees
  segment.member3 = 0;                        // its curvature: straight
  segment.member4 = Boxed(std::uint32_t{8});  // its width in metres
  return segment;
}

/// The slope at the ends and in the middle of a link: up to the middle, flat from there.
DT_link::Profile SlopeProfile() {
  std::vector<DT_attributePoint> points;
  for (const std::uint32_t metres : {0U, kLinkLength / 2, kLinkLength}) {
    DT_attributePoint point;
    point.member0 = metres;                                                  // from the link's beginning
    point.member1 = Attribute(AttributeKind::kSlope, metres == 0 ? 12 : 0);  // per mille
    points.push_back(std::move(point));
  }
  DT_link::Profile profile;
  profile.member1 = static_cast<std::uint16_t>(AttributeKind::kSlope);  // what it is a profile of
  profile.member3 = Boxed(std::move(points));
  return profile;
}

/// A line along a link of the main road, `metresNorth` of its southern edge.
std::vector<Triple> LineAlong(LinkNumber mainRoadLink, std::uint32_t metresNorth) {
  const std::uint32_t begin = MetresBefore(mainRoadLink);
  return {Point(begin, metresNorth), Point(begin + kLinkLength, metresNorth)};
}

constexpr std::uint32_t kLanesPerLink = 2;
constexpr std::uint32_t kLaneWidth = 4;  // metres

/// Lanes are numbered by their link and their place on it: 0 leads east, 1 leads back.
DT_reference LaneReference(LinkNumber mainRoadLink, std::uint32_t place) {
  return Reference(ObjectKind::kLane, mainRoadLink * kLanesPerLink + place);
}

DT_lane Lane(LinkNumber link, std::uint32_t place) {
  const bool leadsEast = place == 0;
  DT_lane lane;
  if (leadsEast ? link < kShortRangeLinks : link > 1) {
    lane.member0 = Boxed(std::vector{LaneReference(leadsEast ? link + 1 : link - 1, place)});  // where it leads to
  }
  lane.member2 = link * kLanesPerLink + place;                                 // its number
  lane.member3 = Boxed(LineAlong(link, place * kLaneWidth + kLaneWidth / 2));  // the line along its middle
  lane.member5 = Boxed(kLaneWidth);                                            // its width in metres
  lane.member9 = leadsEast ? 1 : 2;                                            // 1: with the link, 2: against it
  lane.member11 = SpeedLimit(link);                                            // in kilometres per hour
  return lane;
}

/// A line on the road: solid at its edges, broken in its middle.
DT_laneBoundaryParallelElement Boundary(LinkNumber link, std::uint32_t metresNorth, bool isSolid) {
  DT_laneBoundary boundary;
  boundary.member1 = isSolid ? 1 : 2;                      // 1: a solid line, 2: a broken one
  boundary.member4 = Boxed(LineAlong(link, metresNorth));  // its course
  DT_laneBoundaryGroup group;
  group.member1 = Boxed(std::vector{boundary});
  DT_laneBoundaryParallelElement element;
  element.member0 = metresNorth;
  element.member1 = std::move(group);
  return element;
}

DT_laneGroup LaneGroup(LinkNumber link) {
  DT_laneGroup::Boundaries boundaries;
  boundaries.member1 =
      std::vector{Boundary(link, 0, true), Boundary(link, kLaneWidth, false), Boundary(link, 2 * kLaneWidth, true)};
  DT_laneGroup group;
  group.member0 = Reference(ObjectKind::kLaneGroup, link);
  group.member1 = Boxed(std::vector{Range(LinkReference(link), 0, kLinkLength)});  // the part of the road
  group.member2 = Boxed(std::vector{Lane(link, 0), Lane(link, 1)});
  group.member3 = Boxed(std::vector{boundaries});
  return group;
}

}  // namespace

std::vector<DT_linkLayerLongRange_struct> LinkLayerLongRange() {
  return MakeLayer<DT_linkLayerLongRange_struct>(1, Links(kMainRoadLinks));
}

std::vector<DT_linkLayerShortRange_struct> LinkLayerShortRange() {
  std::vector<DT_link> links = Links(kShortRangeLinks);
  for (DT_link& link : links) {
    const std::uint32_t heading = *link.member0 == kMainRoad ? kEast : kNorth;
    link.member8 = Boxed(std::vector{Half(0, heading), Half(kLinkLength / 2, heading)});
    link.member9 = Boxed(std::vector{Attribute(AttributeKind::kSurface, 1)});  // 1: asphalt
    link.member15 = Boxed(std::vector{SlopeProfile()});
  }
  return MakeLayer<DT_linkLayerShortRange_struct>(2, std::move(links));
}

std::vector<DT_laneLayer_struct> LaneLayer() {
  std::vector<DT_laneGroup> groups;
  for (LinkNumber link = 1; link <= kShortRangeLinks; ++link) {
    groups.push_back(LaneGroup(link));
  }
  return MakeLayer<DT_laneLayer_struct>(3, std::move(groups));
}

}  // namespace example_map
