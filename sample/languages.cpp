#include "sample/languages.h"

#include <iconv.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <stdexcept>

namespace zev::sample {
namespace {

/// A thing that the commands work on. French and Spanish nouns carry their article.
struct Noun {
  std::string_view key;
  char germanGender;  // m, f, n
  std::string_view german;
  std::string_view french;
  bool frenchFeminine;
  std::string_view spanish;
};

constexpr std::array kNouns = {
    Noun{"Recording", 'f', "Aufnahme", "l'enregistrement", false, "la grabación"},
    Noun{"Video", 'n', "Video", "la vidéo", true, "el vídeo"},
    Noun{"Project", 'n', "Projekt", "le projet", false, "el proyecto"},
    Noun{"Track", 'f', "Spur", "la piste", true, "la pista"},
    Noun{"Scene", 'f', "Szene", "la scène", true, "la escena"},
    Noun{"Title", 'm', "Titel", "le titre", false, "el título"},
    Noun{"Subtitle", 'm', "Untertitel", "le sous-titre", false, "el subtítulo"},
    Noun{"Transition", 'm', "Übergang", "la transition", true, "la transición"},
    Noun{"Effect", 'm', "Effekt", "l'effet", false, "el efecto"},
    Noun{"Filter", 'm', "Filter", "le filtre", false, "el filtro"},
    Noun{"Cursor", 'm', "Mauszeiger", "le pointeur", false, "el puntero"},
    Noun{"HotKey", 'n', "Tastenkürzel", "le raccourci clavier", false, "el atajo de teclado"},
    Noun{"KeySound", 'm', "Tastenton", "le son de touche", false, "el sonido de tecla"},
    Noun{"ClickSound", 'm', "Klickton", "le son de clic", false, "el sonido de clic"},
    Noun{"Palette", 'f', "Farbpalette", "la palette de couleurs", true, "la paleta de colores"},
    Noun{"Picture", 'n', "Bild", "l'image", true, "la imagen"},
    Noun{"Snapshot", 'n', "Standbild", "la capture d'écran", true, "la captura de pantalla"},
    Noun{"ToolBar", 'f', "Symbolleiste", "la barre d'outils", true, "la barra de herramientas"},
    Noun{"Window", 'n', "Fenster", "la fenêtre", true, "la ventana"},
    Noun{"Region", 'm', "Bildausschnitt", "la zone de l'écran", true, "el área de la pantalla"},
    Noun{"Camera", 'n', "Kamerabild", "l'image de la caméra", true, "la imagen de la cámara"},
    Noun{"Microphone", 'f', "Mikrofonaufnahme", "la prise de son", true, "la toma de sonido"},
    Noun{"SoundTrack", 'f', "Tonspur", "la bande sonore", true, "la banda sonora"},
    Noun{"Comment", 'm', "Kommentar", "le commentaire", false, "el comentario"},
    Noun{"Arrow", 'm', "Pfeil", "la flèche", true, "la flecha"},
    Noun{"Frame", 'm', "Rahmen", "le cadre", false, "el marco"},
    Noun{"Marker", 'f', "Markierung", "le repère", false, "la marca"},
    Noun{"Template", 'f', "Vorlage", "le modèle", false, "la plantilla"},
    Noun{"Setting", 'f', "Einstellung", "le réglage", false, "el ajuste"},
    Noun{"Folder", 'm', "Ordner", "le dossier", false, "la carpeta"},
    Noun{"File", 'f', "Datei", "le fichier", false, "el archivo"},
    Noun{"Profile", 'n', "Profil", "le profil", false, "el perfil"},
    Noun{"Player", 'f', "Wiedergabeseite", "la page de lecture", true, "la página de reproducción"},
    Noun{"TimeLine", 'f', "Zeitleiste", "la ligne de temps", true, "la línea de tiempo"},
    Noun{"Chapter", 'n', "Kapitel", "le chapitre", false, "el capítulo"},
    Noun{"Watermark", 'n', "Wasserzeichen", "le filigrane", false, "la marca de agua"},
    Noun{"Logo", 'n', "Firmenlogo", "le logo", false, "el logotipo"},
    Noun{"Background", 'm', "Hintergrund", "l'arrière-plan", false, "el fondo"},
    Noun{"Zoom", 'f', "Vergrößerung", "l'agrandissement", false, "la ampliación"},
    Noun{"Schedule", 'm', "Zeitplan", "le calendrier", false, "el calendario"},
    Noun{"Balloon", 'f', "Sprechblase", "la bulle", true, "el globo de texto"},
    Noun{"Button", 'f', "Schaltfläche", "le bouton", false, "el botón"},
    Noun{"Highlight", 'f', "Hervorhebung", "la mise en évidence", true, "el resalte"},
    Noun{"Tutorial", 'n', "Lernprogramm", "le didacticiel", false, "el tutorial"},
};

struct Verb {
  std::string_view key;
  std::string_view german;
  std::string_view germanParticiple;
  std::string_view germanWithTo;
  std::string_view french;
  std::string_view frenchParticiple;
  std::string_view spanish;
  std::string_view spanishParticiple;
};

constexpr std::array kVerbs = {
    Verb{"Open", "öffnen", "geöffnet", "zu öffnen", "ouvrir", "ouvert", "abrir", "abierto"},
    Verb{"Save", "speichern", "gespeichert", "zu speichern", "enregistrer", "enregistré", "guardar",
         "guardado"},
    Verb{"Close", "schließen", "geschlossen", "zu schließen", "fermer", "fermé", "cerrar",
         "cerrado"},
    Verb{"Delete", "löschen", "gelöscht", "zu löschen", "supprimer", "supprimé", "eliminar",
         "eliminado"},
    Verb{"Copy", "kopieren", "kopiert", "zu kopieren", "copier", "copié", "copiar", "copiado"},
    Verb{"Move", "verschieben", "verschoben", "zu verschieben", "déplacer", "déplacé", "mover",
         "movido"},
    Verb{"Rename", "umbenennen", "umbenannt", "umzubenennen", "renommer", "renommé", "renombrar",
         "renombrado"},
    Verb{"Export", "exportieren", "exportiert", "zu exportieren", "exporter", "exporté", "exportar",
         "exportado"},
    Verb{"Import", "importieren", "importiert", "zu importieren", "importer", "importé", "importar",
         "importado"},
    Verb{"Check", "prüfen", "geprüft", "zu prüfen", "vérifier", "vérifié", "comprobar",
         "comprobado"},
    Verb{"Repair", "reparieren", "repariert", "zu reparieren", "réparer", "réparé", "reparar",
         "reparado"},
    Verb{"Show", "anzeigen", "angezeigt", "anzuzeigen", "afficher", "affiché", "mostrar",
         "mostrado"},
    Verb{"Hide", "ausblenden", "ausgeblendet", "auszublenden", "masquer", "masqué", "ocultar",
         "ocultado"},
    Verb{"Lock", "sperren", "gesperrt", "zu sperren", "verrouiller", "verrouillé", "bloquear",
         "bloqueado"},
    Verb{"Change", "ändern", "geändert", "zu ändern", "modifier", "modifié", "modificar",
         "modificado"},
    Verb{"Add", "hinzufügen", "hinzugefügt", "hinzuzufügen", "ajouter", "ajouté", "añadir",
         "añadido"},
    Verb{"Replace", "ersetzen", "ersetzt", "zu ersetzen", "remplacer", "remplacé", "reemplazar",
         "reemplazado"},
    Verb{"Restore", "wiederherstellen", "wiederhergestellt", "wiederherzustellen", "restaurer",
         "restauré", "restaurar", "restaurado"},
    Verb{"Select", "auswählen", "ausgewählt", "auszuwählen", "sélectionner", "sélectionné",
         "seleccionar", "seleccionado"},
    Verb{"Load", "laden", "geladen", "zu laden", "charger", "chargé", "cargar", "cargado"},
};

/// One wording of a text of a section. {n} stands for the bare noun, {N} for the noun with its
/// article, {A} for the same as an object, {V} for the verb, {P} for its participle, {Z} for the
/// verb with "zu".
using Wording = std::array<std::string_view, 3>;  // in the order of Language

struct Line {
  std::string_view key;
  std::array<Wording, 3> wordings;  // taken in turn from section to section
};

constexpr std::array kLines = {
    Line{"Menu",
         {{{"{n} {V}", "{V} {N}", "{V} {N}"},
           {"{n} {V}...", "{V} {N}...", "{V} {N}..."},
           {"{n} &{V}", "&{V} {N}", "&{V} {N}"}}}},
    Line{"Hint",
         {{{"Klicken Sie hier, um {A} {Z}.", "Cliquez ici pour {V} {N}.",
            "Haga clic aquí para {V} {N}."},
           {"Mit diesem Befehl können Sie {A} {V}.", "Cette commande sert à {V} {N}.",
            "Esta orden permite {V} {N}."},
           {"Doppelklicken Sie auf die Liste, um {A} {Z}.",
            "Double-cliquez dans la liste pour {V} {N}.",
            "Haga doble clic en la lista para {V} {N}."}}}},
    Line{
        "Ask",
        {{{"Möchten Sie {A} wirklich {V}?", "Voulez-vous vraiment {V} {N} ?",
           "¿Desea realmente {V} {N}?"},
          {"Soll {N} jetzt {P} werden?", "Faut-il {V} {N} maintenant ?", "¿Se debe {V} {N} ahora?"},
          {"Das Programm wird {A} {V}. Fortfahren?", "Le programme va {V} {N}. Continuer ?",
           "El programa va a {V} {N}. ¿Continuar?"}}}},
    Line{"Done",
         {{{"{N} wurde {P}.", "{N} a été {P}.", "{N} se ha {P} correctamente."},
           {"Fertig: {N} ist {P}.", "Terminé : {N} est {P}.", "Listo: {N} se ha {P}."},
           {"{N} wurde ohne Fehler {P}.", "{N} a été {P} sans erreur.",
            "{N} se ha {P} sin errores."}}}},
    Line{"Failed",
         {{{"{N} konnte nicht {P} werden.", "{N} n'a pas pu être {P}.", "No se pudo {V} {N}."},
           {"Beim Versuch, {A} {Z}, ist ein Fehler aufgetreten.",
            "Une erreur s'est produite : {N} n'est pas {P}.",
            "Se ha producido un error al {V} {N}."},
           {"Der Speicher reicht nicht aus, um {A} {Z}.", "La mémoire ne suffit pas pour {V} {N}.",
            "No hay memoria suficiente para {V} {N}."}}}},
    Line{"Undo",
         {{{"Rückgängig: {n} {V}", "Annuler : {V} {N}", "Deshacer: {V} {N}"},
           {"Letzten Schritt zurücknehmen ({n} {V})", "Revenir en arrière ({V} {N})",
            "Anular el último paso ({V} {N})"},
           {"Schritt \"{n} {V}\" rückgängig machen", "Annuler l'étape \"{V} {N}\"",
            "Deshacer el paso \"{V} {N}\""}}}},
};

constexpr std::array<std::string_view, 3> kHeads = {
    "[Language]\r\nName=Deutsch\r\nLocale=1031\r\nCodePage=1252\r\nVersion=21\r\n\r\n",
    "[Language]\r\nName=Français\r\nLocale=1036\r\nCodePage=1252\r\nVersion=21\r\n\r\n",
    "[Language]\r\nName=Español\r\nLocale=1034\r\nCodePage=1252\r\nVersion=21\r\n\r\n"};

std::string germanArticle(char gender, bool object) {
  if (gender == 'm') return object ? "den " : "der ";
  return gender == 'f' ? "die " : "das ";
}

std::string german(char mark, const Noun& noun, const Verb& verb) {
  switch (mark) {
    case 'n':
      return std::string(noun.german);
    case 'N':
      return germanArticle(noun.germanGender, false) + std::string(noun.german);
    case 'A':
      return germanArticle(noun.germanGender, true) + std::string(noun.german);
    case 'P':
      return std::string(verb.germanParticiple);
    case 'Z':
      return std::string(verb.germanWithTo);
    default:
      return std::string(verb.german);
  }
}

std::string french(char mark, const Noun& noun, const Verb& verb) {
  switch (mark) {
    case 'N':
      return std::string(noun.french);
    case 'P':
      return std::string(verb.frenchParticiple) + (noun.frenchFeminine ? "e" : "");
    default:
      return std::string(verb.french);
  }
}

std::string spanish(char mark, const Noun& noun, const Verb& verb) {
  switch (mark) {
    case 'N':
      return std::string(noun.spanish);
    case 'P':
      return std::string(verb.spanishParticiple);
    default:
      return std::string(verb.spanish);
  }
}

std::string word(Language language, char mark, const Noun& noun, const Verb& verb) {
  switch (language) {
    case Language::kGerman:
      return german(mark, noun, verb);
    case Language::kFrench:
      return french(mark, noun, verb);
    case Language::kSpanish:
      return spanish(mark, noun, verb);
  }
  throw std::invalid_argument("no such language");
}

/// Fills the places of `pattern`; the text begins with a capital, behind the mark of an access key
/// if it has one.
std::string filled(std::string_view pattern, Language language, const Noun& noun,
                   const Verb& verb) {
  std::string out;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '{') {
      out += pattern[i];
      continue;
    }
    out += word(language, pattern[i + 1], noun, verb);
    i += 2;
  }
  char& first = out[out[0] == '&' ? 1 : 0];
  if (first >= 'a' && first <= 'z') first = static_cast<char>(first - 'a' + 'A');
  return out;
}

/// What the programs look a message up by: the FNV-1a hash of "Noun.Verb.Line", eight hexadecimal
/// digits.
std::string messageNumber(const Noun& noun, const Verb& verb, std::string_view line) {
  std::string key(noun.key);
  key.append(".").append(verb.key).append(".").append(line);
  std::uint32_t hash = 0x811c9dc5u;
  for (const char c : key) hash = (hash ^ static_cast<unsigned char>(c)) * 0x01000193u;
  std::array<char, 9> digits{};
  std::snprintf(digits.data(), digits.size(), "%08X", static_cast<unsigned>(hash));
  return digits.data();
}

std::string section(Language language, const Noun& noun, const Verb& verb, std::size_t turn) {
  std::string out = "[";
  out.append(noun.key).append(".").append(verb.key).append("]\r\n");
  for (const Line& line : kLines) {
    const Wording& wording = line.wordings[turn % line.wordings.size()];
    const std::string_view pattern = wording[static_cast<std::size_t>(language)];
    out.append(messageNumber(noun, verb, line.key)).append("=");
    out.append(filled(pattern, language, noun, verb)).append("\r\n");
    turn = turn * 5 / 3 + 1;  // not the same choice for every line
  }
  return out.append("\r\n");
}

std::string toCodePage1252(std::string text) {
  const iconv_t converter = iconv_open("CP1252", "UTF-8");
  std::string out(text.size(), '\0');
  char* source = text.data();
  char* target = out.data();
  std::size_t sourceLeft = text.size();
  std::size_t targetLeft = out.size();
  const std::size_t result = iconv(converter, &source, &sourceLeft, &target, &targetLeft);
  iconv_close(converter);
  if (result == static_cast<std::size_t>(-1)) throw std::runtime_error("text not in CP1252");
  out.resize(out.size() - targetLeft);
  return out;
}

}  // namespace

std::vector<std::string> languageSections(Language language) {
  std::vector<std::string> sections;
  sections.push_back(toCodePage1252(std::string(kHeads[static_cast<std::size_t>(language)])));
  for (const Noun& noun : kNouns) {
    for (const Verb& verb : kVerbs) {
      sections.push_back(toCodePage1252(section(language, noun, verb, sections.size())));
    }
  }
  return sections;
}

}  // namespace zev::sample
