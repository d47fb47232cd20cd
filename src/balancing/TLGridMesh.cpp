#include "balancing/TLGridMesh.h"

#include "project/TLGrid.h"
#include "project/TLProjectType.h"

namespace {

TLBlockMesh::Patch patchOf(const TLFace& face, const TLBC& condition) {
  TLBlockMesh::Patch patch;
  patch.u = static_cast<TLBlockMesh::Direction>(face.uDirection());
  patch.w = static_cast<TLBlockMesh::Direction>(face.wDirection());
  patch.uMin = condition.indices[0];
  patch.uMax = condition.indices[1];
  patch.wMin = condition.indices[2];
  patch.wMax = condition.indices[3];
  return patch;
}

void addConnections(const TLBlock& block, std::int32_t number, TLBlockMesh& mesh) {
  for (const auto& face : block.faces) {
    for (const auto& condition : face->conditions) {
      if (!condition->isConnection()) continue;
      mesh.connections.push_back({number, condition->connectedBlock(), patchOf(*face, *condition)});
    }
  }
}

void addSides(const TLGrid& grid, const std::vector<Handle<TLFNMBPatches>>& patches,
              std::vector<TLBlockMesh::Side>& sides) {
  for (const auto& named : patches) {
    TLBlockMesh::Side side{named->block(), {}};
    const TLFace* face = grid.face(named->block(), named->face());
    const TLBC* condition = grid.patch(named->block(), named->face(), named->patch());
    if (face != nullptr && condition != nullptr) side.patch = patchOf(*face, *condition);
    sides.push_back(side);
  }
}

}  // namespace

TLBlockMesh::Block blockOf(const TLBlock& block) {
  TLBlockMesh::Block data;
  data.nodes[TLBlockMesh::I] = block.imax;
  data.nodes[TLBlockMesh::J] = block.jmax;
  data.nodes[TLBlockMesh::K] = block.kmax;
  data.nbCells = block.nbCells;
  data.solid = block.blockType == TLBlockType::solid;
  return data;
}

TLBlockMesh blockMeshOf(const TLGrid& grid) {
  TLBlockMesh mesh;
  mesh.unstructured = grid.projectType == TLProjectType::hexa;
  mesh.blocks.reserve(grid.blocks.size());
  for (const auto& block : grid.blocks) {
    mesh.blocks.push_back(blockOf(*block));
    addConnections(*block, mesh.nbBlocks(), mesh);
  }
  for (const auto& connection : grid.connections) {
    auto& record = mesh.fullNonMatching.emplace_back();
    addSides(grid, connection->leftPatches, record.left);
    addSides(grid, connection->rightPatches, record.right);
  }
  return mesh;
}
