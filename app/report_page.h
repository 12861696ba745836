// The frame of a report's page: its style and script stand in it, so that it needs nothing beside itself.
#pragma once
#include <string>
#include <vector>

namespace qxview {

// Up to the first article. `names` are those of the captures that follow, an article each.
std::string PageHead(const std::string& title, const std::vector<std::string>& names);
std::string PageFoot();

}  // namespace qxview
