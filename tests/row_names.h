// Names each case of a parameterised test after its table row: every row carries the name of
// the one behaviour it pins, so ctest and the logs name the behaviour, not a row number.
#pragma once

#include <gtest/gtest.h>

#include <string>

struct RowName {
    template <typename Row>
    std::string operator()(const ::testing::TestParamInfo<Row>& info) const {
        return info.param.name;
    }
};
