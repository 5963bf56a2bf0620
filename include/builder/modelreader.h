#pragma once

#include <memory>
#include <string>
#include <vector>

#include "api/qvexception.h"
#include "api/qvmodel.h"
#include "qvm/qvmreader.h"

namespace quvex {

/// Rebuilds an environment in an empty model from what `ModelWriter` wrote, through the checks of the public objects.
/// `expressions` holds the expressions read so far, by their position in the file: that is how the file refers to them.
/// Two integer constants of one value are two positions for one expression.
class ModelReader {
 public:
  static constexpr const char* kName = "quvex::ModelReader";

  /// Opens the file and reads its header, which tells the encoding. Raises KernelException for any other file.
  ModelReader(QVModel& targetModel, const std::string& fileName);

  /// Reads the whole document. The model is closed as soon as phases, parameters or a solution come, and left open
  /// when there are none. Raises KernelException for what is wrong with the file, and the failures of the public
  /// objects for what is wrong with the model; what was read until then stays.
  void read();

 private:
  /// A map of bare maps, with `readEntry` called inside each of them.
  template <class ReadEntry>
  void readList(ReadEntry readEntry);
  /// The properties up to the end of the map. `readProperty` takes a name and consumes the value if it knows the name.
  template <class ReadProperty>
  void readProperties(ReadProperty readProperty);

  void readSection(const std::string& name);
  void readExpressions();
  void readExpression(const Place& place);
  void readOperands();
  void readConstraints();
  void readObjectives();
  void readPhases();
  void readParameters();
  [[nodiscard]] bool readParameter(const std::string& name);
  void readObjectiveBounds();
  void readObjectiveBound(int index);
  void readAdvancedParams();
  void readSolution();
  void readDecisions();

  void ensureClosed();
  [[nodiscard]] QVExpression* expressionAt(int position, const Place& place) const;

  QVModel& model;
  bool losesSigns;  ///< of infinities, as text does
  std::unique_ptr<QVMReader> reader;
  std::vector<QVExpression*> expressions;
};

}  // namespace quvex
