#pragma once

#include "platform/settings_framework/PSListController.h"
#include "platform/settings_framework/PSSpecifier.h"
#include "platform/settings_framework/PSTableCell.h"
