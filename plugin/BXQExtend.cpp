// BXQExtend: the plug-in marker class.
#include "plugin/BXQExtend.h"

BXQExtend::BXQExtend() = default;
BXQExtend::~BXQExtend() = default;
