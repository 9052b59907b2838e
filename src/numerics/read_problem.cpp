// Recording a problem met while reading a record.
#include "read_problem.h"

namespace orvo::detail {

void ReportReadProblem(OvReader& reader, const char* what, eOvParserStatus status) {
    OvParserStatus where = reader.GetParser().GetStatus();
    where.SetStatus(status);
    auto* error = new OvReaderError(where);
    error->SetName(String(what));
    reader.GetReaderErrorList().Add(error);
}

}  // namespace orvo::detail
