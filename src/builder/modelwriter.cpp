#include "builder/modelwriter.h"

#include <algorithm>
#include <string_view>
#include <thread>

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvexception.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvsolution.h"
#include "api/qvversion.h"
#include "builder/operatortools.h"
#include "qvm/binarywriter.h"
#include "qvm/textwriter.h"

namespace quvex {

namespace {

/// Anything that does not ask for binary is text, so that every file name is accepted.
[[nodiscard]] QVMWriter* createWriter(std::string_view fileName) {
  const bool compressed = fileName.ends_with(".gz");
  const bool binary = fileName.ends_with(".qvb.gz") || fileName.ends_with(".qvb");
  if (binary) return new BinaryWriter(std::string(fileName), compressed);
  return new TextWriter(std::string(fileName), compressed);
}

[[nodiscard]] int nbLogicalProcessors() { return static_cast<int>(std::max(1U, std::thread::hardware_concurrency())); }

/// Null for a status that is never saved.
[[nodiscard]] const char* statusText(QVSolutionStatus status) {
  switch (status) {
    case QVSolutionStatus::Infeasible:
      return "infeasible";
    case QVSolutionStatus::Feasible:
      return "feasible";
    case QVSolutionStatus::Optimal:
      return "optimal";
    case QVSolutionStatus::Inconsistent:
      break;
  }
  return nullptr;
}

}  // namespace

ModelWriter::ModelWriter(QVModel& sourceModel, const std::string& fileName)
    : model(sourceModel), writer(createWriter(fileName)) {}

ModelWriter::~ModelWriter() noexcept(false) { delete writer; }

void ModelWriter::write() {
  writer->pushMap();
  writeInfo();
  writeExpressions();
  writeOperands();
  writeConstraints();
  writeObjectives();
  if (model.isClosed()) {
    writePhases();
    writeParameters();
    writeSolution();
  }
  writer->popMap();
}

void ModelWriter::writeInfo() {
  writer->pushProperty("info");
  writer->pushMap();
  writer->pushValue("version", QVVersion::getVersion());
  writer->pushValue("nbCores", nbLogicalProcessors());
  writer->popMap();
}

void ModelWriter::writeExpressions() {
  writer->pushProperty("expressions");
  writer->pushMap();
  for (const QVExpression* expr : ModelAccess::expressions(model)) writeExpression(*expr);
  writer->popMap();
}

void ModelWriter::writeExpression(const QVExpression& expr) {
  writer->pushMap();
  writer->pushValue("type", std::string(OperatorTools::getName(ModelAccess::op(expr))));
  const std::string_view name = ModelAccess::name(expr);
  if (!name.empty()) writer->pushValue("name", std::string(name));
  if (ModelAccess::isConstant(expr)) {
    const t_value value = ModelAccess::constantValue(expr);
    if (ModelAccess::valueType(expr) == kDouble) {
      writer->pushValue("value", wordToDouble(value));
    } else {
      writer->pushValue("value", value);
    }
  }
  writer->popMap();
}

void ModelWriter::writeOperands() {
  writer->pushProperty("operands");
  writer->pushMap();
  for (const QVExpression* expr : ModelAccess::expressions(model)) {
    writer->pushMap();
    for (const std::uint32_t operand : ModelAccess::operandIndices(*expr)) writer->pushValue(static_cast<int>(operand));
    writer->popMap();
  }
  writer->popMap();
}

void ModelWriter::writeConstraints() {
  writer->pushProperty("constraints");
  writer->pushMap();
  for (const QVExpression* constraint : ModelAccess::constraints(model)) {
    writer->pushMap();
    writer->pushValue("idx", static_cast<int>(ModelAccess::index(*constraint)));
    writer->popMap();
  }
  writer->popMap();
}

void ModelWriter::writeObjectives() {
  writer->pushProperty("objectives");
  writer->pushMap();
  const auto& objectives = ModelAccess::objectives(model);
  for (std::size_t i = 0; i < objectives.size(); ++i) {
    const bool isMaximized = ModelAccess::objectiveDirection(model, i) == QVObjectiveDirection::Maximize;
    writer->pushMap();
    writer->pushValue("idx", static_cast<int>(ModelAccess::index(*objectives[i])));
    writer->pushValue("dir", isMaximized ? "maximize" : "minimize");
    writer->popMap();
  }
  writer->popMap();
}

void ModelWriter::writePhases() {
  Quvex& quvex = *model.getQuvex();
  writer->pushProperty("phases");
  writer->pushMap();
  for (int i = 0; i < quvex.getNbPhases(); ++i) {
    const QVPhase& phase = *quvex.getPhase(i);
    writer->pushMap();
    writer->pushValue("iterationLimit", phase.getIterationLimit());
    writer->pushValue("timeLimit", phase.getTimeLimit());
    writer->pushValue("optimizedObjective", phase.getOptimizedObjective());
    writer->popMap();
  }
  writer->popMap();
}

void ModelWriter::writeParameters() {
  const QVParam& param = *model.getQuvex()->getParam();
  writer->pushProperty("parameters");
  writer->pushMap();
  writer->pushValue("seed", param.getSeed());
  writer->pushValue("nbThreads", param.getNbThreads());
  writer->pushValue("annealingLevel", param.getAnnealingLevel());
  writer->pushValue("verbosity", param.getVerbosity());
  writer->pushValue("timeBetweenDisplays", param.getTimeBetweenDisplays());
  writeObjectiveBounds();
  writeAdvancedParams();
  writer->popMap();
}

void ModelWriter::writeObjectiveBounds() {
  const QVParam& param = *model.getQuvex()->getParam();
  writer->pushProperty("objectiveBounds");
  writer->pushMap();
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    if (model.getObjective(i)->isDouble()) {
      writer->pushValue(param.getDoubleObjectiveBound(i));
    } else {
      writer->pushValue(param.getIntObjectiveBound(i));
    }
  }
  writer->popMap();
}

void ModelWriter::writeAdvancedParams() {
  writer->pushProperty("advancedParams");
  writer->pushMap();
  for (const auto& [key, value] : ModelAccess::advancedParams(*model.getQuvex()->getParam())) {
    writer->pushValue(key, value);
  }
  writer->popMap();
}

void ModelWriter::writeSolution() {
  const char* text = statusText(model.getQuvex()->getSolution()->getStatus());
  if (text == nullptr) raise<KernelException>(here<ModelWriter>(), "Solution status not supported");
  writer->pushProperty("solution");
  writer->pushMap();
  writer->pushValue("status", text);
  writeDecisions();
  writer->popMap();
}

void ModelWriter::writeDecisions() {
  QVSolution& solution = *model.getQuvex()->getSolution();
  writer->pushProperty("decisions");
  writer->pushMap();
  for (const QVExpression* decision : ModelAccess::decisions(model)) {
    if (ModelAccess::valueType(*decision) == kDouble) {
      writer->pushValue(solution.getDoubleValue(decision));
    } else {
      writer->pushValue(solution.getIntValue(decision));
    }
  }
  writer->popMap();
}

}  // namespace quvex
