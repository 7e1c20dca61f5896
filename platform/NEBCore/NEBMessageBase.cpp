#include "NEBCore/NEBMessageBase.h"

NEBMessageBase::~NEBMessageBase() = default;
