// Homogeneous mapping of whole point lists.
#include "orvo/model/point_list.h"
#include "orvo/numerics/biko_transform.h"

namespace orvo {

int Transform2D(OvPointList* list, const OvMatrix& matrix) {
    if (list == nullptr) return 0;
    int visited = 0;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        matrix.PTrans2D(p);  // a refused point stays as it was and still counts
        ++visited;
    }
    return visited;
}

int Transform3D(OvPointList* list, const OvMatrix& matrix) {
    if (list == nullptr) return 0;
    int visited = 0;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        matrix.PTrans3D(p);
        ++visited;
    }
    return visited;
}

}  // namespace orvo
