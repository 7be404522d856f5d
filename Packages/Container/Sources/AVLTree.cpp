#include "AVLTree.h"

Status AVLTreeInit(ContainerHandle_t *)
{
    return StatusCode::Failed;
}
