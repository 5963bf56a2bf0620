#include "builder/modelreader.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <variant>

#include "api/quvex.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvsolution.h"
#include "api/statecheck.h"
#include "builder/operatortools.h"
#include "qvm/binaryreader.h"
#include "qvm/fileformat.h"
#include "qvm/textreader.h"

namespace quvex {

namespace {

[[nodiscard]] std::unique_ptr<QVMReader> createReader(const std::string& fileName) {
  if (isBinaryFile(fileName)) return std::make_unique<BinaryReader>(fileName);
  return std::make_unique<TextReader>(fileName);
}

}  // namespace

ModelReader::ModelReader(QVModel& targetModel, const std::string& fileName)
    : model(targetModel), losesSigns(!isBinaryFile(fileName)), reader(createReader(fileName)) {}

void ModelReader::read() {
  reader->nextOpenMap();
  if (reader->isProperty("info")) {
    reader->nextProperty();
    reader->skipValue();
  }
  readExpressions();
  while (reader->isProperty()) readSection(reader->nextProperty());
}

void ModelReader::readSection(const std::string& name) {
  if (name == "operands") return readOperands();
  if (name == "constraints") return readConstraints();
  if (name == "objectives") return readObjectives();
  if (name == "phases") return readPhases();
  if (name == "parameters") return readParameters();
  if (name == "solution") return readSolution();
  reader->skipValue();
}

template <class ReadEntry>
void ModelReader::readList(ReadEntry readEntry) {
  reader->nextOpenMap();
  while (reader->isOpenMap()) {
    reader->nextOpenMap();
    readEntry();
    reader->nextEndMap();
  }
  reader->nextEndMap();
}

template <class ReadProperty>
void ModelReader::readProperties(ReadProperty readProperty) {
  while (reader->isProperty()) {
    if (!readProperty(reader->nextProperty())) reader->skipValue();
  }
}

void ModelReader::ensureClosed() {
  if (!model.isClosed()) model.close();
}

QVExpression* ModelReader::expressionAt(int position, const Place& place) const {
  checkIndex("expression", position, expressions.size(), place);
  return expressions[static_cast<std::size_t>(position)];
}

// ---------------------------------------------------------------------------------------------------------- the model

void ModelReader::readExpressions() {
  const Place place = here<ModelReader>();
  reader->nextProperty("expressions");
  reader->nextOpenMap();
  while (reader->isOpenMap()) readExpression(place);
  reader->nextEndMap();
}

void ModelReader::readExpression(const Place& place) {
  std::optional<QVOperator> op;
  std::string name;
  std::variant<std::int64_t, double> value = std::int64_t{0};
  reader->nextOpenMap();
  readProperties([&](const std::string& property) {
    if (property == "type") {
      op = OperatorTools::stringToOperator(reader->nextString());
    } else if (property == "name") {
      name = reader->nextString();
    } else if (property != "value") {
      return false;
    } else if (reader->isDouble()) {
      value = reader->nextDouble();
    } else {
      value = reader->nextLongLong();
    }
    return true;
  });
  reader->nextEndMap();
  if (!op) raise<KernelException>(place, "Property 'type' is required to define an expression");
  QVExpression* expr = *op == QVOperator::Const
                           ? std::visit([&](auto number) { return model.createConstant(number); }, value)
                           : model.createExpression(*op);
  if (!name.empty()) expr->setName(name);
  expressions.push_back(expr);
}

void ModelReader::readOperands() {
  const Place place = here<ModelReader>();
  int position = 0;
  readList([&] {
    QVExpression* expr = expressionAt(position++, place);
    while (reader->isInt()) expr->addOperand(expressionAt(reader->nextInt(), place));
  });
}

void ModelReader::readConstraints() {
  const Place place = here<ModelReader>();
  readList([&] {
    std::optional<int> position;
    readProperties([&](const std::string& property) {
      if (property != "idx") return false;
      position = reader->nextInt();
      return true;
    });
    if (position) model.addConstraint(expressionAt(*position, place));
  });
}

void ModelReader::readObjectives() {
  const Place place = here<ModelReader>();
  readList([&] {
    std::optional<int> position;
    auto direction = QVObjectiveDirection::Minimize;
    readProperties([&](const std::string& property) {
      if (property == "idx") {
        position = reader->nextInt();
      } else if (property == "dir") {
        const bool isMaximized = reader->nextString() == "maximize";
        direction = isMaximized ? QVObjectiveDirection::Maximize : QVObjectiveDirection::Minimize;
      } else {
        return false;
      }
      return true;
    });
    if (position) model.addObjective(expressionAt(*position, place), direction);
  });
}

// --------------------------------------------------------------------------------------------------------- the search

void ModelReader::readPhases() {
  ensureClosed();
  readList([&] {
    QVPhase& phase = *model.getQuvex()->createPhase();
    readProperties([&](const std::string& property) {
      if (property == "iterationLimit") {
        phase.setIterationLimit(reader->nextLongLong());
      } else if (property == "timeLimit") {
        phase.setTimeLimit(reader->nextInt());
      } else if (property == "optimizedObjective") {
        phase.setOptimizedObjective(reader->nextInt());
      } else {
        return false;
      }
      return true;
    });
  });
}

void ModelReader::readParameters() {
  ensureClosed();
  reader->nextOpenMap();
  readProperties([&](const std::string& property) { return readParameter(property); });
  reader->nextEndMap();
}

bool ModelReader::readParameter(const std::string& name) {
  QVParam& param = *model.getQuvex()->getParam();
  if (name == "seed") {
    param.setSeed(reader->nextInt());
  } else if (name == "nbThreads") {
    param.setNbThreads(reader->nextInt());
  } else if (name == "annealingLevel") {
    param.setAnnealingLevel(reader->nextInt());
  } else if (name == "verbosity") {
    param.setVerbosity(reader->nextInt());
  } else if (name == "timeBetweenDisplays") {
    param.setTimeBetweenDisplays(reader->nextInt());
  } else if (name == "objectiveBounds") {
    readObjectiveBounds();
  } else if (name == "advancedParams") {
    readAdvancedParams();
  } else {
    return false;
  }
  return true;
}

void ModelReader::readObjectiveBounds() {
  reader->nextOpenMap();
  for (int i = 0; reader->isDouble() || reader->isLongLong(); ++i) readObjectiveBound(i);
  reader->nextEndMap();
}

// The file's number need not have the objective's type: text turns a whole double into an integer, and a whole double
// constant that came back as an integer may have turned the objective itself into one. An infinity that an integer
// objective can't have stands for no bound, which is what closing the model has set. So does plus infinity in text,
// which may be a minus infinity behind another number: taken at its word it would end a minimisation at once.
void ModelReader::readObjectiveBound(int index) {
  QVParam& param = *model.getQuvex()->getParam();
  const bool isDouble = model.getObjective(index)->isDouble();
  if (reader->isDouble()) {
    const double bound = reader->nextDouble();
    if (!std::isinf(bound) || (isDouble && !(losesSigns && bound > 0))) param.setDoubleObjectiveBound(index, bound);
  } else if (isDouble) {
    param.setDoubleObjectiveBound(index, static_cast<double>(reader->nextLongLong()));
  } else {
    param.setIntObjectiveBound(index, reader->nextLongLong());
  }
}

void ModelReader::readAdvancedParams() {
  QVParam& param = *model.getQuvex()->getParam();
  reader->nextOpenMap();
  readProperties([&](const std::string& key) {
    param.setAdvancedParam(key, reader->nextInt());
    return true;
  });
  reader->nextEndMap();
}

void ModelReader::readSolution() {
  ensureClosed();
  reader->nextOpenMap();
  readProperties([&](const std::string& property) {
    if (property != "decisions") return false;
    readDecisions();
    return true;
  });
  reader->nextEndMap();
}

void ModelReader::readDecisions() {
  QVSolution& solution = *model.getQuvex()->getSolution();
  reader->nextOpenMap();
  for (int i = 0; reader->isDouble() || reader->isLongLong(); ++i) {
    const QVExpression* decision = model.getDecision(i);
    if (reader->isDouble()) {
      solution.setDoubleValue(decision, reader->nextDouble());
    } else {
      solution.setIntValue(decision, reader->nextLongLong());
    }
  }
  reader->nextEndMap();
}

}  // namespace quvex
