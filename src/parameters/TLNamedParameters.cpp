#include "parameters/TLNamedParameters.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace {

// The parameters that have a member of their own, in the order of writing. Two rows of one name are
// two sizes of one parameter.
constexpr TLNamedParameter kNamed[] = {
    // clang-format off
    {"IBL2BL", TLParameterType::integer, 1},
    {"IVIMOD", TLParameterType::integer, 1},
    {"ROFRE1", TLParameterType::real, 1},
    {"ROFRE2", TLParameterType::real, 1},
    {"ILVSET", TLParameterType::integer, 1},
    {"STHICK", TLParameterType::real, 1},
    {"ITRINI", TLParameterType::integer, 1},
    {"PHYFRE", TLParameterType::real, 1},
    {"IBARO", TLParameterType::integer, 1},
    {"IHCMOD", TLParameterType::integer, 1},
    {"ITIMAQ", TLParameterType::integer, 1},
    {"ITMXAQ", TLParameterType::integer, 1},
    {"DELTAT", TLParameterType::real, 1},
    {"BETNP1", TLParameterType::real, 1},
    {"BETN", TLParameterType::real, 1},
    {"BETNM1", TLParameterType::real, 1},
    {"ITHRF", TLParameterType::integer, 1},
    {"ICYL", TLParameterType::integer, 1},
    {"INPRES", TLParameterType::integer, 1},
    {"INSEUL", TLParameterType::integer, 1},
    {"ITURB", TLParameterType::integer, 1},
    {"CPUBOO", TLParameterType::integer, 1},
    {"ISPALA", TLParameterType::integer, 1},
    {"MTETUR", TLParameterType::integer, 1},
    {"MTURBV", TLParameterType::integer, 1},
    {"REYNO", TLParameterType::real, 1},
    {"RLEN", TLParameterType::real, 1},
    {"RVEL", TLParameterType::real, 1},
    {"RRO", TLParameterType::real, 1},
    {"TINF", TLParameterType::real, 1},
    {"TSUTHE", TLParameterType::real, 1},
    {"RGCST", TLParameterType::real, 1},
    {"IRGCON", TLParameterType::integer, 1},
    {"I2D", TLParameterType::integer, 1},
    {"IAXSYM", TLParameterType::integer, 1},
    {"ITYGAS", TLParameterType::integer, 1},
    {"ISTEAM", TLParameterType::integer, 1},
    {"NOFROT", TLParameterType::integer, 1},
    {"IMULOU", TLParameterType::integer, 1},
    {"IQVKTA", TLParameterType::integer, 1},
    {"ITYGAI", TLParameterType::integer, 1},
    {"GAMMA", TLParameterType::real, 1},
    {"CP", TLParameterType::real, 1},
    {"ICPGA", TLParameterType::integer, 1},
    {"IGAMTE", TLParameterType::real, 9},
    {"ROPDAT", TLParameterType::real, 9},
    {"ICPTE", TLParameterType::real, 9},
    {"HCCOEF", TLParameterType::real, 9},
    {"VICOEF", TLParameterType::real, 9},
    {"COMPCO", TLParameterType::real, 4},
    {"KAPPAS", TLParameterType::real, 1},
    {"NDTREC", TLParameterType::integer, 1},
    {"IHARMO", TLParameterType::integer, 1},
    {"IMPCCI", TLParameterType::integer, 1},
    {"IMOVGR", TLParameterType::integer, 1},
    {"IMVTYP", TLParameterType::integer, 1},
    {"IMODAL", TLParameterType::integer, 1},
    {"IMOVTY", TLParameterType::integer, 1},
    {"XCOSC", TLParameterType::real, 1},
    {"YCOSC", TLParameterType::real, 1},
    {"ZCOSC", TLParameterType::real, 1},
    {"ALFOSC", TLParameterType::real, 1},
    {"AMPOSC", TLParameterType::real, 1},
    {"AMPDEG", TLParameterType::real, 1},
    {"FRQOSC", TLParameterType::real, 1},
    {"XROTC", TLParameterType::real, 1},
    {"YROTC", TLParameterType::real, 1},
    {"ZROTC", TLParameterType::real, 1},
    {"CMPOSC", TLParameterType::real, 1},
    {"BMPOSC", TLParameterType::real, 1},
    {"BETOSC", TLParameterType::real, 1},
    {"PHIOSC", TLParameterType::real, 1},
    {"OMGOSC", TLParameterType::real, 1},
    {"FRZOSC", TLParameterType::real, 1},
    {"NBHAR", TLParameterType::integer, 1},
    {"NPERT", TLParameterType::integer, 1},
    {"NHARMO", TLParameterType::integer, 1},
    {"NHTIME", TLParameterType::integer, 1},
    {"OMEGAT", TLParameterType::real, 1},
    {"NITSOL", TLParameterType::integer, 4},
    {"RELAXS", TLParameterType::real, 2},
    {"HFLIM", TLParameterType::real, 2},
    {"IPLT3D", TLParameterType::integer, 2},
    {"PRREF", TLParameterType::real, 1},
    {"RHOL", TLParameterType::real, 1},
    {"RHOV", TLParameterType::real, 1},
    {"MULIQ", TLParameterType::real, 1},
    {"MUGAS", TLParameterType::real, 1},
    {"PRTLV", TLParameterType::real, 1},
    {"CPLREF", TLParameterType::real, 1},
    {"CPVREF", TLParameterType::real, 1},
    {"IMITRA", TLParameterType::integer, 1},
    {"PVAPS", TLParameterType::real, 1},
    {"AMIN", TLParameterType::real, 1},
    {"IEQCH", TLParameterType::integer, 1},
    {"IUPWIN", TLParameterType::integer, 1},
    {"GLOTST", TLParameterType::integer, 1},
    {"NSWPFC", TLParameterType::integer, 10},
    {"NSWPCF", TLParameterType::integer, 10},
    {"IARDIS", TLParameterType::integer, 1},
    {"LIMITE", TLParameterType::integer, 2},
    {"IMPLIC", TLParameterType::integer, 1},
    {"BETPAR", TLParameterType::real, 1},
    {"NGRID", TLParameterType::integer, 1},
    {"IFULMG", TLParameterType::integer, 1},
    {"IFLMOI", TLParameterType::integer, 1},
    {"NFMGCY", TLParameterType::integer, 1},
    {"ITMAX", TLParameterType::integer, 1},
    {"INIUNS", TLParameterType::integer, 1},
    {"RESTAQ", TLParameterType::real, 1},
    {"RESRED", TLParameterType::real, 1},
    {"CFL", TLParameterType::real, 1},
    {"CFLBMG", TLParameterType::real, 1},
    {"BOOFMG", TLParameterType::integer, 1},
    {"IWRSOL", TLParameterType::integer, 1},
    {"IWRSOL", TLParameterType::integer, 2},
    {"ITUFIL", TLParameterType::integer, 1},
    {"PFREE", TLParameterType::real, 1},
    {"TFREE", TLParameterType::real, 1},
    {"UFREE", TLParameterType::real, 1},
    {"VFREE", TLParameterType::real, 1},
    {"WFREE", TLParameterType::real, 1},
    {"OMGSY", TLParameterType::real, 1},
    {"INIFIT", TLParameterType::integer, 1},
    {"INIOPT", TLParameterType::integer, 1},
    {"IDIRTM", TLParameterType::integer, 3},
    {"NPER", TLParameterType::integer, 1},
    {"INIRPE", TLParameterType::integer, 1},
    {"PRFACT", TLParameterType::real, 1},
    {"EKFRE", TLParameterType::real, 1},
    {"EPFRE", TLParameterType::real, 1},
    {"IORDER", TLParameterType::integer, 1},
    {"RESFMG", TLParameterType::real, 1},
    {"IPRECO", TLParameterType::integer, 1},
    {"ICOVIC", TLParameterType::integer, 1},
    {"ICONAT", TLParameterType::integer, 1},
    {"IROVAR", TLParameterType::integer, 1},
    {"PREF", TLParameterType::real, 1},
    {"TREF", TLParameterType::real, 1},
    {"QREF", TLParameterType::real, 1},
    {"MERKLE", TLParameterType::integer, 1},
    {"ROREF", TLParameterType::real, 1},
    {"ITRANS", TLParameterType::integer, 1},
    {"IDOMAV", TLParameterType::integer, 30},
    {"PRSINL", TLParameterType::real, 30},
    {"PRSROT", TLParameterType::real, 30},
    {"IPASSI", TLParameterType::integer, 1},
    {"ICOMBU", TLParameterType::integer, 1},
    {"IRECKM", TLParameterType::integer, 1},
    {"AEBU", TLParameterType::real, 1},
    {"BEBU", TLParameterType::real, 1},
    {"MVAVIS", TLParameterType::integer, 1},
    {"HTRACO", TLParameterType::real, 1},
    {"BIPLLV", TLParameterType::real, 1},
    {"PLCST", TLParameterType::real, 1},
    {"PLD0", TLParameterType::real, 1},
    {"PLPOW", TLParameterType::real, 1},
    {"PLCOEF", TLParameterType::real, 4},
    {"CACST", TLParameterType::real, 1},
    {"CAPOW", TLParameterType::real, 1},
    {"CAISRV", TLParameterType::real, 1},
    {"_KPCF", TLParameterType::integer, 1},
    {"KPCF", TLParameterType::integer, 1},
    {"_NGI", TLParameterType::integer, 1},
    {"NGI", TLParameterType::integer, 1},
    {"_KBODY", TLParameterType::integer, 1},
    {"KBODY", TLParameterType::integer, 1},
    {"_GRAV", TLParameterType::real, 3},
    {"KGRAV", TLParameterType::real, 3},
    {"IGRAV", TLParameterType::real, 3},
    {"_KTURB", TLParameterType::integer, 1},
    {"KTURB", TLParameterType::integer, 1},
    {"_CELT", TLParameterType::real, 1},
    {"CELT", TLParameterType::real, 1},
    {"_TMAX", TLParameterType::real, 1},
    {"TMAX", TLParameterType::real, 1},
    {"_RKEXP", TLParameterType::integer, 1},
    {"RKEXP", TLParameterType::integer, 1},
    {"_NRKS", TLParameterType::integer, 1},
    {"NRKS", TLParameterType::integer, 1},
    {"_KDRAG", TLParameterType::integer, 1},
    {"KDRAG", TLParameterType::integer, 1},
    {"COOLFL", TLParameterType::integer, 1},
    {"INLPIT", TLParameterType::real, 1},
    {"DEPHAR", TLParameterType::integer, 1},
    {"RSHAME", TLParameterType::integer, 1},
    {"NHDEPT", TLParameterType::integer, 3},
    {"CLMERG", TLParameterType::integer, 1},
    {"MVMERG", TLParameterType::integer, 1},
    {"CLOREP", TLParameterType::integer, 1},
    {"NPOCLO", TLParameterType::integer, 1},
    {"INLDIS", TLParameterType::integer, 1},
    {"ITHRF1", TLParameterType::integer, 1},
    {"RTHRFL", TLParameterType::real, 4},
    {"ITHRF2", TLParameterType::integer, 1},
    {"THFKAP", TLParameterType::real, 1},
    {"FBNORM", TLParameterType::integer, 1},
    {"TFUPDA", TLParameterType::integer, 1},
    {"THCONE", TLParameterType::real, 1},
    {"TGBETA", TLParameterType::integer, 1},
    {"WZOR2D", TLParameterType::integer, 1},
    {"BETABL", TLParameterType::integer, 1},
    {"TFEDGE", TLParameterType::real, 2},
    {"BETALE", TLParameterType::integer, 1},
    {"NSMOTF", TLParameterType::integer, 2},
    {"NTABTF", TLParameterType::integer, 3},
    {"IDORTF", TLParameterType::integer, 30},
    {"NSTSTF", TLParameterType::integer, 7},
    {"NPGFIL", TLParameterType::integer, 1},
    {"ISTDDN", TLParameterType::integer, 1},
    {"RLAMBL", TLParameterType::real, 1},
    {"IADVTU", TLParameterType::integer, 1},
    {"IPARA", TLParameterType::integer, 1},
    {"NSTEP", TLParameterType::integer, 1},
    {"INMBCO", TLParameterType::integer, 1},
    {"ICORNM", TLParameterType::integer, 1},
    {"IRECAL", TLParameterType::integer, 1},
    {"IPOPRO", TLParameterType::integer, 1},
    {"IKEMGL", TLParameterType::integer, 1},
    {"ICFSCL", TLParameterType::integer, 1},
    {"RCFSCL", TLParameterType::real, 1},
    {"IKATOL", TLParameterType::integer, 1},
    {"IMHD", TLParameterType::integer, 1},
    {"IMHDI", TLParameterType::integer, 1},
    {"BXFRE", TLParameterType::real, 1},
    {"BYFRE", TLParameterType::real, 1},
    {"BZFRE", TLParameterType::real, 1},
    {"MUMHD", TLParameterType::real, 1},
    {"SIGMHD", TLParameterType::real, 1},
    {"IPHABC", TLParameterType::integer, 1},
    {"IDOMSC", TLParameterType::integer, 1},
    {"IQVK", TLParameterType::integer, 1},
    {"THEFIL", TLParameterType::text, 1},
    {"NQUANT", TLParameterType::integer, 2},
    {"NQNTSD", TLParameterType::integer, 2},
    {"NQNTTR", TLParameterType::integer, 2},
    {"NQNTME", TLParameterType::integer, 8},
    {"NQNTME", TLParameterType::integer, 5},
    {"NQNTME", TLParameterType::integer, 3},
    {"NQNTAV", TLParameterType::integer, 5},
    {"NQNTAV", TLParameterType::integer, 2},
    {"ISVEGL", TLParameterType::integer, 1},
    // clang-format on
};

// Parameters that are no longer wanted.
constexpr std::string_view kUnwanted[] = {
    // clang-format off
    "ICGNS", "FORMAT", "CMIMEX", "CSPCOM", "ISPCOM", "ISP1DP", "MTURBV", "MEARSM", "NEARCO",
    "IEARCO", "BIG", "DTCST", "ETFRE", "I2CPDC", "IAPFAC", "IASCII", "IAXIS", "IQVK", "IQVKGL",
    "IENSTO", "IEQCH", "IGIBBS", "IGTAB", "IGTTAB", "ILINE", "IMPINT", "INIFIT", "INIOPT",
    "IPRCON", "IRBZEB0", "ISYMRE", "ITHEDA0", "IVATCO", "JACOBI", "KTCFM1", "KTCFM2", "KTALF1",
    "KTSK", "KTST1", "KTST2", "KTCE1", "KTCE21", "KTCE22", "KTCE23", "KTCF2", "LINREL", "MALTUR",
    "MVAVIS", "NDEPVA", "NGTAB", "NUNKI", "NUNK0", "SU1", "SU2", "ISVEGL0", "NQNTBB", "IQNTBB",
    "IDOMER", "INDMER", "NBCMER", "IDIRTM", "INIRPE", "PRFACT", "NPER", "IDOBL1", "IDOBL2",
    "INDBL1", "BREDTF", "NREDTF", "DISCTF", "INDBL2", "THETA", "LINERE", "OMEGA", "ISPEC", "SPRAD",
    "INITUR", "THROAT", "RTARG", "IBCW15", "ICOEFF", "IGFBGL", "INMBVA", "INMBIP", "INISOL",
    "IIDATS", "IDSKST", "NPITCH", "MGRIDF", "IGLOUT", "IGFLDM", "IKEDIF", "MFBND", "IFITR",
    "KTRTYP", "IVLAMP", "ILSDPH", "ICHTVE", "CHTTYP", "NITSOL", "RELAXS", "HFLIM", "TINITC",
    "TADAPT", "TPARAM", "FBEDGE", "IQVKOR", "IRSOPT",
    // clang-format on
};

// Lists of places in the quantity table, whose sizes vary, with the parameter that says how many.
constexpr TLIndexList kIndexLists[] = {
    {"IQUANT", "NQUANT"}, {"IQNTSD", "NQNTSD"}, {"IQNTTR", "NQNTTR"},
    {"IQNTME", "NQNTME"}, {"IQNTAV", "NQNTAV"}, {"ITYPAV", "NQNTAV"},
};

// Known to the definition file but kept by nobody.
constexpr std::string_view kPassedOver[] = {"ICGNS,I,1,1,0", "IFORMAT,I,1,1,0", "SPFREE,L,1,1,0",
                                            "THEFILE,L,1,1,0"};

struct NamedIndex {
  std::unordered_map<std::string, std::size_t> byDescriptor;
  std::unordered_map<std::string_view, std::size_t> memberByName;
  std::vector<std::size_t> rowOfMember;

  NamedIndex() {
    for (std::size_t row = 0; row < std::size(kNamed); ++row) {
      byDescriptor.emplace(kNamed[row].descriptor(), row);
      if (memberByName.emplace(kNamed[row].name, rowOfMember.size()).second) {
        rowOfMember.push_back(row);
      }
    }
  }
};

const NamedIndex& namedIndex() {
  static const NamedIndex index;
  return index;
}

template <class Range>
bool holds(const Range& range, std::string_view word) {
  return std::find(std::begin(range), std::end(range), word) != std::end(range);
}

}  // namespace

RWCString TLNamedParameter::descriptor() const {
  return TLDescriptor{RWCString(name), type, count}.text();
}

const TLNamedParameter* findNamedParameter(std::string_view descriptor) {
  const auto& rows = namedIndex().byDescriptor;
  const auto found = rows.find(std::string(descriptor));
  return found == rows.end() ? nullptr : &kNamed[found->second];
}

std::size_t namedMemberCount() {
  return namedIndex().rowOfMember.size();
}

int namedMember(std::string_view name) {
  const auto& members = namedIndex().memberByName;
  const auto found = members.find(name);
  return found == members.end() ? -1 : static_cast<int>(found->second);
}

const TLNamedParameter& namedMemberRow(std::size_t member) {
  return kNamed[namedIndex().rowOfMember[member]];
}

std::span<const TLIndexList> indexLists() {
  return kIndexLists;
}

int findIndexList(std::string_view name) {
  const auto found = std::find_if(std::begin(kIndexLists), std::end(kIndexLists),
                                  [name](const TLIndexList& list) { return list.name == name; });
  return found == std::end(kIndexLists) ? -1 : static_cast<int>(found - std::begin(kIndexLists));
}

bool isUnwantedParameter(std::string_view name) {
  return holds(kUnwanted, name);
}

bool isPassedOverParameter(std::string_view descriptor) {
  return holds(kPassedOver, descriptor);
}
