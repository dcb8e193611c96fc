// A row fails on any line that is missing, too much, changed or moved, and on what nobody looked at in front of it.
#include <gtest/gtest-spi.h>

#include "api_test.h"

namespace {

using RowTest = ApiTest;

TEST_F(RowTest, ComparesResultAndTranscriptInOrder)
{
    EXPECT_ROW(zr_nexa_nat_type_set_v1(50, 2), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(50)",
               "call  SetNatType(2)",
               "info  Set Nat Type success : wwan_handle=50 set_nat_type=2");
    EXPECT_TRUE(platform.transcript.empty());
    EXPECT_NONFATAL_FAILURE(EXPECT_ROW(zr_nexa_nat_type_set_v1(0, 2), 0x1004u, "info  entry"),
                                       "zr_nexa_nat_type_set_v1(0, 2) gave 0x4, not 0x1004");
    EXPECT_NONFATAL_FAILURE(EXPECT_ROW(zr_nexa_nat_type_set_v1(50, 2), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(50)",
                   "info  Set Nat Type success : wwan_handle=50 set_nat_type=2",
                   "call  SetNatType(2)"),
                                       "zr_nexa_nat_type_set_v1(50, 2)\n"
                                       "  info  entry\n"
                                       "  call  SetWWANProfileHandlePreference(50)\n"
                                       "- info  Set Nat Type success : wwan_handle=50 set_nat_type=2\n"
                                       "- call  SetNatType(2)\n"
                                       "+ call  SetNatType(2)\n"
                                       "+ info  Set Nat Type success : wwan_handle=50 set_nat_type=2");
    EXPECT_NONFATAL_FAILURE(EXPECT_ROW(zr_nexa_nat_type_set_v1(0, 2), 4u, "info  entry", "call  SetNatType(2)"),
                                       "  info  entry\n- call  SetNatType(2)");
    EXPECT_NONFATAL_FAILURE(EXPECT_ROW(zr_nexa_nat_type_set_v1(7, 4), 4u, "info  entry"),
                                       "  info  entry\n+ error Invalid NAT Type : 4, wwan_handle : 7");
}

TEST_F(RowTest, ARecordUnderAnotherNameBearsIt)
{
    EXPECT_NONFATAL_FAILURE(EXPECT_ROW_OF("zr_nexa_nat_type_get_v1", zr_nexa_nat_type_set_v1(0, 2), 4u, "info  entry"),
                                          "- info  entry\n+ info  zr_nexa_nat_type_set_v1: entry");
    zr_nexa_nat_type_set_v1(0, 2);
    EXPECT_TRANSCRIPT("info  zr_nexa_nat_type_set_v1: entry");
}

TEST_F(RowTest, WhatNobodyLookedAtFailsTheNextRow)
{
    zr_nexa_nat_type_set_v1(0, 2);
    EXPECT_NONFATAL_FAILURE(EXPECT_ROW(zr_nexa_nat_type_set_v1(0, 2), 4u, "info  entry"),
                                       "in front of the row\n+ info  zr_nexa_nat_type_set_v1: entry");
    zr_nexa_nat_type_set_v1(0, 2);
    platform.forget();
    EXPECT_ROW(zr_nexa_nat_type_set_v1(0, 2), 4u, "info  entry");
}

}  // namespace
