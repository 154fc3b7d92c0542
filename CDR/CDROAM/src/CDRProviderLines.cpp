#include "CDRProviderLines.hpp"

// Fields in order: path key missing, path no instance, instance key missing,
// instance no instance, key getter failed, create, delete, startChange,
// setter, endChange, invalid value, method not found.
const CDRProviderLines QTX_CDRServiceProviderLines = {
    120, 128, 150, 158, 101, 190, 214, 240, 301, 318, 289, 352};
const CDRProviderLines QTX_CDRServicePrefixBinProviderLines = {
    110, 118, 140, 148, 95, 176, 199, 226, 262, 279, 255, 312};
const CDRProviderLines QTX_CDRServiceAccessBinProviderLines = {
    110, 118, 140, 148, 95, 176, 199, 226, 266, 283, 257, 316};
const CDRProviderLines QTX_CDRPushSettingProviderLines = {
    112, 120, 142, 150, 97, 180, 203, 231, 290, 307, 282, 345};
const CDRProviderLines QTX_CDRPushStatisticsProviderLines = {
    108, 116, 138, 146, 93, 170, 193, 221, 248, 262, 241, 298};
// startChange, setIncludeMetricsFlag, endChange and invokeMethod are fixed
// at 271, 304, 311 and 352.
const CDRProviderLines QTX_CDRPullStatisticsProviderLines = {
    112, 120, 142, 150, 97, 180, 203, 271, 304, 311, 297, 352};
