#pragma once

#include "Container.h"

Status AVLTreeInit(ContainerHandle_t *container);
