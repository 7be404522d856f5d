#pragma once

#include "Container.h"

Status RBTreeInit(ContainerHandle_t *container);
