#pragma once

#include <string>

#include "api/qvmodel.h"
#include "qvm/qvmwriter.h"

namespace quvex {

/// Saves the environment of a model as one document, in either encoding: expressions, operands, constraints and
/// objectives; of a closed model also phases, parameters and the solution.
/// `writer` has a file of its own from construction to destruction; the document in it is complete after `write`.
class ModelWriter {
 public:
  static constexpr const char* kName = "quvex::ModelWriter";

  /// Creates the file. The end of its name chooses the encoding: ".qvb" or ".qvb.gz" means binary, anything else text;
  /// ".gz" means gzip. Raises KernelException when the file can't be created.
  ModelWriter(QVModel& sourceModel, const std::string& fileName);
  ~ModelWriter() noexcept(false);
  ModelWriter(const ModelWriter&) = delete;
  ModelWriter& operator=(const ModelWriter&) = delete;

  /// Writes the whole document. Raises KernelException for a solution that is inconsistent, or that has a value that
  /// does not exist.
  void write();

 private:
  void writeInfo();
  void writeExpressions();
  void writeExpression(const QVExpression& expr);
  void writeOperands();
  void writeConstraints();
  void writeObjectives();
  void writePhases();
  void writeParameters();
  void writeObjectiveBounds();
  void writeAdvancedParams();
  void writeSolution();
  void writeDecisions();

  QVModel& model;
  QVMWriter* writer;  // owned; a writer may raise when it is destroyed, which no smart pointer lets pass
};

}  // namespace quvex
