#include "RBTree.h"

Status RBTreeInit(ContainerHandle_t *)
{
    return StatusCode::Failed;
}
