// What one map has and another has not.
//
//     - table orders_tags /root/orders/tags
//     ~ table orders: name orders -> Orders2024
//     + column orders.paid NUMERIC /root/orders/paid
//     ~ column orders.id: type NUMERIC -> CHARACTER, length none -> 12
//
// Tested by tests/tool/golden/map_diff.t
#pragma once

#include "map_model.h"

#include <string>
#include <vector>

namespace qvej {

// A line for each difference, without its end, safe to print.
[[nodiscard]] std::vector<std::string> mapDifferences(const MapModel& a, const MapModel& b);

}  // namespace qvej
