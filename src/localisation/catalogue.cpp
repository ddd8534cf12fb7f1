#include "localisation/catalogue.h"

#include <algorithm>
#include <iterator>

namespace zev {
namespace {

// English, Turkish, German, French, Spanish; a text too long for its line goes on in the next one,
// further in. Of two rows with the same key the first is found. Callers look a message up by its
// exact wording and join pieces as they stand: slips of spelling and blanks at the ends stay.
// clang-format off
constexpr PhraseRow phrases[] = {
    // 1
    {u"ZEV Screen Recorder is going to be installed on your computer. Please click on the 'Next' "
         u"button to determinine a directory.",
     u"ZEV Ekran Kaydedici bilgisayarınıza kurulacak. Dizini belirlemek için lütfen 'İleri' "
         u"düğmesine tıklayın.",
     u"ZEV Bildschirm Recorder wird auf Ihrem Computer installiert. Bitte klicken Sie auf die "
         u"Schaltfläche 'Weiter', um ein Verzeichnis zu bestimmen.",
     u"L'Enregistreur d'Ecran ZEV va être installé sur votre ordinateur. Veuillez cliquer sur le "
         u"bouton 'Suivant' pour choisir un répertoire.",
     u"ZEV Grabador de Pantalla será instalado en su ordenador. Por favor haga clic en el botón "
         u"'Siguiente' para determinar un directorio."},

    // 2
    {u"Language :",
     u"Dil :",
     u"Sprache :",
     u"Language:",
     u"Idioma :"},

    // 3
    {u"ZEV Screen Recorder",
     u"ZEV Ekran Kaydedici",
     u"ZEV Bildschirm Recorder",
     u"Enregisteur d'Ecran ZEV",
     u"ZEV Grabador de Pantalla"},

    // 4
    {u"ZEV Screen Recorder - Install",
     u"ZEV Ekran Kaydedici - Kurulum",
     u"ZEV Bildschirm Recorder - Installation",
     u"Enregisteur d'Ecran ZEV - Installation",
     u"ZEV Grabador de Pantalla - Instalación"},

    // 5
    {u"Cancel",
     u"İptal",
     u"Abbrechen",
     u"Annuler",
     u"Cancelar"},

    // 6
    {u"<< Back",
     u"<< Geri",
     u"<< Zurück",
     u"<< Retour",
     u"<< Atrás"},

    // 7
    {u"Next >>",
     u"İleri >>",
     u"Weiter >>",
     u"Suivant >>",
     u"Siguiente>>"},

    // 8
    {u"Please read before you continue :",
     u"Devam etmeden önce lütfen okuyun :",
     u"Bitte lesen Sie dies, bevor Sie fortfahren :",
     u"Veuillez lire avant de continuer :",
     u"Por favor lea antes de continuar :"},

    // 9: the agreement, whose paragraphs have a table of their own
    {},

    // 10
    {u"Yes I Agree.",
     u"Evet Kabul Ediyorum.",
     u"Ja, ich stimme zu.",
     u"Oui, j'accepte.",
     u"Sí, estoy de acuerdo."},

    // 11
    {u"No I Do Not Agree.",
     u"Hayır Kabul Etmiyorum.",
     u"Nein, ich stimme nicht zu.",
     u"Non, je n'accepte pas.",
     u"No, no estoy de acuerdo."},

    // 12
    {u"Launch ZEV now.",
     u"ZEV'yi Şimdi Çalıştır",
     u"Führe ZEV jetzt ein",
     u"Lancer ZEV maintenant.",
     u"Ejecute el ZEV ahora."},

    // 13
    {u"Click on the 'Install' button to install the Screen Recorder into the following "
         u"directory :",
     u"Ekran Kaydedici'yi aşağıdaki dizine kurmak için 'Kur' düğmesine tıklayın :",
     u"Klicken Sie auf die Schaltfläche 'Installiere', um den Bildschirm Recorder in das "
         u"folgende Verzeichnis zu installieren :",
     u"Cliquez sur le bouton 'Installer' pour installer l'Enregistreur d'Ecran dans le "
         u"répertoire suivant :",
     u"Haga clic en el botón 'Instale' para instalar el Grabador de Pantalla en el directorio "
         u"siguiente :"},

    // 14
    {u"Change Dir",
     u"Dizini Değiştir",
     u"Verzeichnis ändern",
     u"Changer de Répertoire",
     u"Cambiar Directorio"},

    // 15
    {u"Error: Couldn 't find the user folder and couldn't create one! Quiting installation.",
     u"Hata: Kullanıcı dizini bulunamadı ve yeni bir dizin de oluşturulamadı! Kurulumdan "
         u"çıkılıyor.",
     u"Fehler: Das Benutzerverzeichnis konnte nicht gefunden und auch keines erstellt werden! "
         u"Die Installation wird beendet.",
     u"Erreur: Le répertoire utilisateur n'a pu être trouvé et aucun n'a pu être créé! "
         u"L'installation est abandonnée.",
     u"Error: ¡No se pudo encontrar el directorio de usuario y tampoco se pudo crear uno! "
         u"Saliendo de la instalación."},

    // 16
    {u"Finish",
     u"Son",
     u"Ende",
     u"Fin",
     u"Terminar"},

    // 17
    {u"Couldn 't find user folder, please click Ok to choose it manually.",
     u"Kullanıcı dizini bulunamadı, lütfen elle seçmek için Tamam'a tıklayın.",
     u"Das Benutzerverzeichnis konnte nicht gefunden werden, bitte klicken Sie auf Ok, um es "
         u"manuell auszuwählen.",
     u"Le répertoire utilisateur n'a pu être trouvé, veuillez cliquer sur Ok pour le choisir "
         u"manuellement.",
     u"No se pudo encontrar el directorio de usuario, por favor haga clic en Ok para elegirlo "
         u"manualmente."},

    // 18
    {u"Please choose your user directory",
     u"Lütfen kullanıcı dizininizi seçin",
     u"Bitte wählen Sie Ihr Benutzerverzeichnis",
     u"Veuillez choisir votre répertoire utilisateur",
     u"Por favor elija su directorio de usuario"},

    // 19
    {u"Error: Couldn 't find user folder!",
     u"Hata: Kullanıcı dizini bulunamadı!",
     u"Fehler: Das Benutzerverzeichnis konnte nicht gefunden werden!",
     u"Erreur: Le répertoire utilisateur n'a pu être trouvé!",
     u"Error: ¡No se pudo encontrar el directorio de usuario!"},

    // 20
    {u"Are you sure that user folder is",
     u"Kullanıcı dizininin şu olduğundan emin misiniz:",
     u"Sind Sie sicher, dass dies das Benutzerverzeichnis ist:",
     u"Êtes-vous sûr que le répertoire utilisateur est",
     u"¿Está seguro de que el directorio de usuario es"},

    // 21
    {u"Screen Recorder Settings",
     u"Ekran Kaydedici Ayarları",
     u"Bildschirm Recorder Einstellungen",
     u"Paramètres de l'Enregistreur d'Ecran",
     u"Configuración del Grabador de Pantalla"},

    // 22
    {u"ZEV Screen Recorder is currently running, please close it before starting to install.",
     u"ZEV Ekran Kaydedici şu anda çalışıyor, lütfen kuruluma başlamadan önce kapatın.",
     u"ZEV Bildschirm Recorder läuft gerade, bitte schließen Sie ihn, bevor Sie mit der "
         u"Installation beginnen.",
     u"L'Enregistreur d'Ecran ZEV est en cours d'exécution, veuillez le fermer avant de "
         u"commencer l'installation.",
     u"ZEV Grabador de Pantalla se está ejecutando, por favor ciérrelo antes de comenzar la "
         u"instalación."},

    // 23
    {u"Press on OK button to continue...",
     u"Devam etmek için Tamam düğmesine basın...",
     u"Drücken Sie auf die Schaltfläche OK, um fortzufahren...",
     u"Appuyez sur le bouton OK pour continuer...",
     u"Pulse el botón OK para continuar..."},

    // 24
    {u"Screen Recorder",
     u"Ekran Kaydedici",
     u"Bildschirm Recorder",
     u"Enregistreur d'Ecran",
     u"Grabador de Pantalla"},

    // 25
    {u"Do you want to cancel the installation?",
     u"Kurulumu iptal etmek istiyor musunuz?",
     u"Möchten Sie die Installation abbrechen?",
     u"Voulez-vous annuler l'installation?",
     u"¿Desea cancelar la instalación?"},

    // 26
    {u"Deleting temporary files...",
     u"Geçici dosyalar siliniyor...",
     u"Temporäre Dateien werden gelöscht...",
     u"Suppression des fichiers temporaires...",
     u"Borrando los archivos temporales..."},

    // 27
    {u"Installation file is not complete. Please redownload the file from "
         u"http://www.tavorns.example/zev/",
     u"Kurulum dosyası tam değil. Lütfen dosyayı bu adresten tekrar indirin: "
         u"http://www.tavorns.example/zev/",
     u"Die Installationsdatei ist nicht vollständig. Bitte laden Sie die Datei noch einmal "
         u"herunter von http://www.tavorns.example/zev/",
     u"Le fichier d'installation n'est pas complet. Veuillez télécharger de nouveau le fichier "
         u"depuis http://www.tavorns.example/zev/",
     u"El archivo de instalación no está completo. Por favor vuelva a descargar el archivo desde "
         u"http://www.tavorns.example/zev/"},

    // 28
    {u"File 'MCD28m.wav' could not be extracted!",
     u"'MCD28m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'MCD28m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'MCD28m.wav' n'a pu être extrait!",
     u"¡El archivo 'MCD28m.wav' no pudo ser extraído!"},

    // 29
    {u"File 'MCD28m.wav' could not be expanded!",
     u"'MCD28m.wav' dosyası açılamadı!",
     u"Die Datei 'MCD28m.wav' konnte nicht geöffnet werden!",
     u"",  // a gap: stays in English
     u"¡El archivo 'MCD28m.wav' no pudo ser descomprimido!"},

    // 30
    {u"File 'MCU28m.wav' could not be extracted!",
     u"'MCU28m.wav' dosyası çıkarılamadı!",
     u"",  // a gap: stays in English
     u"Le dossier 'MCU28m.wav' n'a pu etre extrait!",
     u"¡El archivo 'MCU28m.wav' no pudo ser extraído!"},

    // 31
    {u"File 'MCU28m.wav' could not be expanded!",
     u"'MCU28m.wav' dosyası açılamadı!",
     u"Die Datei 'MCU28m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'MCU28m.wav' n'a pu être décompressé!",
     u"¡El archivo 'MCU28m.wav' no pudo ser descomprimido!"},

    // 32
    {u"File 'Stop.wav' could not be extracted!",
     u"'Stop.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Stop.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Stop.wav' n'a pu être extrait!",
     u"¡El archivo 'Stop.wav' no pudo ser extraído!"},

    // 33
    {u"File 'Stop.wav' could not be expanded!",
     u"'Stop.wav' dosyası açılamadı!",
     u"Die Datei 'Stop.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Stop.wav' n'a pu être décompressé!",
     u"¡El archivo 'Stop.wav' no pudo ser descomprimido!"},

    // 34
    {u"File 'StartShort.wav' could not be extracted!",
     u"'StartShort.wav' dosyası çıkarılamadı!",
     u"Die Datei 'StartShort.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'StartShort.wav' n'a pu être extrait!",
     u"¡El archivo 'StartShort.wav' no pudo ser extraído!"},

    // 35
    {u"File 'StartShort.wav' could not be expanded!",
     u"'StartShort.wav' dosyası açılamadı!",
     u"Die Datei 'StartShort.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'StartShort.wav' n'a pu être décompressé!",
     u"¡El archivo 'StartShort.wav' no pudo ser descomprimido!"},

    // 36
    {u"File 'Start.wav' could not be extracted!",
     u"'Start.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Start.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Start.wav' n'a pu être extrait!",
     u"¡El archivo 'Start.wav' no pudo ser extraído!"},

    // 37
    {u"File 'Start.wav' could not be expanded!",
     u"'Start.wav' dosyası açılamadı!",
     u"Die Datei 'Start.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Start.wav' n'a pu être décompressé!",
     u"¡El archivo 'Start.wav' no pudo ser descomprimido!"},

    // 38
    {u"File 'Shot.wav' could not be extracted!",
     u"'Shot.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Shot.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Shot.wav' n'a pu être extrait!",
     u"¡El archivo 'Shot.wav' no pudo ser extraído!"},

    // 39
    {u"File 'Shot.wav' could not be expanded!",
     u"'Shot.wav' dosyası açılamadı!",
     u"Die Datei 'Shot.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Shot.wav' n'a pu être décompressé!",
     u"¡El archivo 'Shot.wav' no pudo ser descomprimido!"},

    // 40
    {u"File 'Key118m.wav' could not be extracted!",
     u"'Key118m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key118m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key118m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key118m.wav' no pudo ser extraído!"},

    // 41
    {u"File 'Key118m.wav' could not be expanded!",
     u"'Key118m.wav' dosyası açılamadı!",
     u"Die Datei 'Key118m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key118m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key118m.wav' no pudo ser descomprimido!"},

    // 42
    {u"File 'Key1116m.wav' could not be extracted!",
     u"'Key1116m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key1116m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key1116m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key1116m.wav' no pudo ser extraído!"},

    // 43
    {u"File 'Key1116m.wav' could not be expanded!",
     u"'Key1116m.wav' dosyası açılamadı!",
     u"Die Datei 'Key1116m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key1116m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key1116m.wav' no pudo ser descomprimido!"},

    // 44
    {u"File 'Key128m.wav' could not be extracted!",
     u"'Key128m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key128m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key128m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key128m.wav' no pudo ser extraído!"},

    // 45
    {u"File 'Key128m.wav' could not be expanded!",
     u"'Key128m.wav' dosyası açılamadı!",
     u"Die Datei 'Key128m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key128m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key128m.wav' no pudo ser descomprimido!"},

    // 46
    {u"File 'MCD18m.wav' could not be extracted!",
     u"'MCD18m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'MCD18m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'MCD18m.wav' n'a pu être extrait!",
     u"¡El archivo 'MCD18m.wav' no pudo ser extraído!"},

    // 47
    {u"File 'MCD18m.wav' could not be expanded!",
     u"'MCD18m.wav' dosyası açılamadı!",
     u"Die Datei 'MCD18m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'MCD18m.wav' n'a pu être décompressé!",
     u"¡El archivo 'MCD18m.wav' no pudo ser descomprimido!"},

    // 48
    {u"File 'MCU18m.wav' could not be extracted!",
     u"'MCU18m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'MCU18m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'MCU18m.wav' n'a pu être extrait!",
     u"¡El archivo 'MCU18m.wav' no pudo ser extraído!"},

    // 49
    {u"File 'MCU18m.wav' could not be expanded!",
     u"'MCU18m.wav' dosyası açılamadı!",
     u"Die Datei 'MCU18m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'MCU18m.wav' n'a pu être décompressé!",
     u"¡El archivo 'MCU18m.wav' no pudo ser descomprimido!"},

    // 50
    {u"File 'Beep.wav' could not be extracted!",
     u"'Beep.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Beep.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Beep.wav' n'a pu être extrait!",
     u"¡El archivo 'Beep.wav' no pudo ser extraído!"},

    // 51
    {u"File 'Beep.wav' could not be expanded!",
     u"'Beep.wav' dosyası açılamadı!",
     u"Die Datei 'Beep.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Beep.wav' n'a pu être décompressé!",
     u"¡El archivo 'Beep.wav' no pudo ser descomprimido!"},

    // 52
    {u"File 'Click.wav' could not be extracted!",
     u"'Click.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Click.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Click.wav' n'a pu être extrait!",
     u"¡El archivo 'Click.wav' no pudo ser extraído!"},

    // 53
    {u"File 'Click.wav' could not be expanded!",
     u"'Click.wav' dosyası açılamadı!",
     u"Die Datei 'Click.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Click.wav' n'a pu être décompressé!",
     u"¡El archivo 'Click.wav' no pudo ser descomprimido!"},

    // 54
    {u"ZEV uninstall file could not be extracted!",
     u"ZEV kaldırma dosyası çıkarılamadı!",
     u"Die ZEV-Deinstallationsdatei konnte nicht extrahiert werden!",
     u"Le fichier de désinstallation de ZEV n'a pu être extrait!",
     u"¡El archivo de desinstalación de ZEV no pudo ser extraído!"},

    // 55
    {u"ZEV 'Uninstall' could not be expanded!",
     u"ZEV 'Uninstall' açılamadı!",
     u"ZEV 'Uninstall' konnte nicht geöffnet werden!",
     u"ZEV 'Uninstall' n'a pu être décompressé!",
     u"¡ZEV 'Uninstall' no pudo ser descomprimido!"},

    // 56
    {u"ZEV help file could not be extracted!",
     u"ZEV yardım dosyası çıkarılamadı!",
     u"Die ZEV-Hilfedatei konnte nicht extrahiert werden!",
     u"Le fichier d'aide de ZEV n'a pu être extrait!",
     u"¡El archivo de ayuda de ZEV no pudo ser extraído!"},

    // 57
    {u"ZEV help file could not be expanded!",
     u"ZEV yardım dosyası açılamadı!",
     u"Die ZEV-Hilfedatei konnte nicht geöffnet werden!",
     u"Le fichier d'aide de ZEV n'a pu être décompressé!",
     u"¡El archivo de ayuda de ZEV no pudo ser descomprimido!"},

    // 58
    {u"File 'Graphics.zev' could not be extracted!",
     u"'Graphics.zev' dosyası çıkarılamadı!",
     u"Die Datei 'Graphics.zev' konnte nicht extrahiert werden!",
     u"Le fichier 'Graphics.zev' n'a pu être extrait!",
     u"¡El archivo 'Graphics.zev' no pudo ser extraído!"},

    // 59
    {u"File 'Graphics.zev' could not be expanded!",
     u"'Graphics.zev' dosyası açılamadı!",
     u"Die Datei 'Graphics.zev' konnte nicht geöffnet werden!",
     u"Le fichier 'Graphics.zev' n'a pu être décompressé!",
     u"¡El archivo 'Graphics.zev' no pudo ser descomprimido!"},

    // 60
    {u"File 'ZEVDefault.pal' could not be extracted!",
     u"'ZEVDefault.pal' dosyası çıkarılamadı!",
     u"Die Datei 'ZEVDefault.pal' konnte nicht extrahiert werden!",
     u"Le fichier 'ZEVDefault.pal' n'a pu être extrait!",
     u"¡El archivo 'ZEVDefault.pal' no pudo ser extraído!"},

    // 61
    {u"File 'ZEVDefault.pal' could not be expanded!",
     u"'ZEVDefault.pal' dosyası açılamadı!",
     u"Die Datei 'ZEVDefault.pal' konnte nicht geöffnet werden!",
     u"Le fichier 'ZEVDefault.pal' n'a pu être décompressé!",
     u"¡El archivo 'ZEVDefault.pal' no pudo ser descomprimido!"},

    // 62
    {u"File 'Qmark.jpg' could not be extracted!",
     u"'Qmark.jpg' dosyası çıkarılamadı!",
     u"Die Datei 'Qmark.jpg' konnte nicht extrahiert werden!",
     u"Le fichier 'Qmark.jpg' n'a pu être extrait!",
     u"¡El archivo 'Qmark.jpg' no pudo ser extraído!"},

    // 63
    {u"File 'Qmark.jpg' could not be expanded!",
     u"'Qmark.jpg' dosyası açılamadı!",
     u"Die Datei 'Qmark.jpg' konnte nicht geöffnet werden!",
     u"Le fichier 'Qmark.jpg' n'a pu être décompressé!",
     u"¡El archivo 'Qmark.jpg' no pudo ser descomprimido!"},

    // 64
    {u"File 'BlueCursor.cur' could not be extracted!",
     u"'BlueCursor.cur' dosyası çıkarılamadı!",
     u"Die Datei 'BlueCursor.cur' konnte nicht extrahiert werden!",
     u"Le fichier 'BlueCursor.cur' n'a pu être extrait!",
     u"¡El archivo 'BlueCursor.cur' no pudo ser extraído!"},

    // 65
    {u"File 'BlueCursor.cur' could not be expanded!",
     u"'BlueCursor.cur' dosyası açılamadı!",
     u"Die Datei 'BlueCursor.cur' konnte nicht geöffnet werden!",
     u"Le fichier 'BlueCursor.cur' n'a pu être décompressé!",
     u"¡El archivo 'BlueCursor.cur' no pudo ser descomprimido!"},

    // 66
    {u"File 'GreenCursor.cur' could not be extracted!",
     u"'GreenCursor.cur' dosyası çıkarılamadı!",
     u"Die Datei 'GreenCursor.cur' konnte nicht extrahiert werden!",
     u"Le fichier 'GreenCursor.cur' n'a pu être extrait!",
     u"¡El archivo 'GreenCursor.cur' no pudo ser extraído!"},

    // 67
    {u"File 'GreenCursor.cur' could not be expanded!",
     u"'GreenCursor.cur' dosyası açılamadı!",
     u"Die Datei 'GreenCursor.cur' konnte nicht geöffnet werden!",
     u"Le fichier 'GreenCursor.cur' n'a pu être décompressé!",
     u"¡El archivo 'GreenCursor.cur' no pudo ser descomprimido!"},

    // 68
    {u"File 'RedCursor.cur' could not be extracted!",
     u"'RedCursor.cur' dosyası çıkarılamadı!",
     u"Die Datei 'RedCursor.cur' konnte nicht extrahiert werden!",
     u"Le fichier 'RedCursor.cur' n'a pu être extrait!",
     u"¡El archivo 'RedCursor.cur' no pudo ser extraído!"},

    // 69
    {u"File 'RedCursor.cur' could not be expanded!",
     u"'RedCursor.cur' dosyası açılamadı!",
     u"Die Datei 'RedCursor.cur' konnte nicht geöffnet werden!",
     u"Le fichier 'RedCursor.cur' n'a pu être décompressé!",
     u"¡El archivo 'RedCursor.cur' no pudo ser descomprimido!"},

    // 70
    {u"File 'YellowCursor.cur' could not be extracted!",
     u"'YellowCursor.cur' dosyası çıkarılamadı!",
     u"Die Datei 'YellowCursor.cur' konnte nicht extrahiert werden!",
     u"Le fichier 'YellowCursor.cur' n'a pu être extrait!",
     u"¡El archivo 'YellowCursor.cur' no pudo ser extraído!"},

    // 71
    {u"File 'YellowCursor.cur' could not be expanded!",
     u"'YellowCursor.cur' dosyası açılamadı!",
     u"Die Datei 'YellowCursor.cur' konnte nicht geöffnet werden!",
     u"Le fichier 'YellowCursor.cur' n'a pu être décompressé!",
     u"¡El archivo 'YellowCursor.cur' no pudo ser descomprimido!"},

    // 72
    {u"File 'SampleAVI.avi' could not be extracted!",
     u"'SampleAVI.avi' dosyası çıkarılamadı!",
     u"Die Datei 'SampleAVI.avi' konnte nicht extrahiert werden!",
     u"Le fichier 'SampleAVI.avi' n'a pu être extrait!",
     u"¡El archivo 'SampleAVI.avi' no pudo ser extraído!"},

    // 73
    {u"File 'SampleAVI.avi' could not be expanded!",
     u"'SampleAVI.avi' dosyası açılamadı!",
     u"Die Datei 'SampleAVI.avi' konnte nicht geöffnet werden!",
     u"Le fichier 'SampleAVI.avi' n'a pu être décompressé!",
     u"¡El archivo 'SampleAVI.avi' no pudo ser descomprimido!"},

    // 74
    {u"File 'ZEVUser.exe' could not be extracted!",
     u"'ZEVUser.exe' dosyası çıkarılamadı!",
     u"Die Datei 'ZEVUser.exe' konnte nicht extrahiert werden!",
     u"Le fichier 'ZEVUser.exe' n'a pu être extrait!",
     u"¡El archivo 'ZEVUser.exe' no pudo ser extraído!"},

    // 75
    {u"File 'ZEVUser.exe' could not be expanded!",
     u"'ZEVUser.exe' dosyası açılamadı!",
     u"Die Datei 'ZEVUser.exe' konnte nicht geöffnet werden!",
     u"Le fichier 'ZEVUser.exe' n'a pu être décompressé!",
     u"¡El archivo 'ZEVUser.exe' no pudo ser descomprimido!"},

    // 76
    {u"File 'SWFGraphs.zev' could not be extracted!",
     u"'SWFGraphs.zev' dosyası çıkarılamadı!",
     u"Die Datei 'SWFGraphs.zev' konnte nicht extrahiert werden!",
     u"Le fichier 'SWFGraphs.zev' n'a pu être extrait!",
     u"¡El archivo 'SWFGraphs.zev' no pudo ser extraído!"},

    // 77
    {u"File 'SWFGraphs.zev' could not be expanded!",
     u"'SWFGraphs.zev' dosyası açılamadı!",
     u"Die Datei 'SWFGraphs.zev' konnte nicht geöffnet werden!",
     u"Le fichier 'SWFGraphs.zev' n'a pu être décompressé!",
     u"¡El archivo 'SWFGraphs.zev' no pudo ser descomprimido!"},

    // 78
    {u"File 'zevatswf.dll' could not be extracted!",
     u"'zevatswf.dll' dosyası çıkarılamadı!",
     u"Die Datei 'zevatswf.dll' konnte nicht extrahiert werden!",
     u"Le fichier 'zevatswf.dll' n'a pu être extrait!",
     u"¡El archivo 'zevatswf.dll' no pudo ser extraído!"},

    // 79
    {u"File 'zevatswf.dll' could not be expanded!",
     u"'zevatswf.dll' dosyası açılamadı!",
     u"Die Datei 'zevatswf.dll' konnte nicht geöffnet werden!",
     u"Le fichier 'zevatswf.dll' n'a pu être décompressé!",
     u"¡El archivo 'zevatswf.dll' no pudo ser descomprimido!"},

    // 80
    {u"File 'zevatwmv.dll' could not be extracted!",
     u"'zevatwmv.dll' dosyası çıkarılamadı!",
     u"Die Datei 'zevatwmv.dll' konnte nicht extrahiert werden!",
     u"Le fichier 'zevatwmv.dll' n'a pu être extrait!",
     u"¡El archivo 'zevatwmv.dll' no pudo ser extraído!"},

    // 81
    {u"File 'zevatwmv.dll' could not be expanded!",
     u"'zevatwmv.dll' dosyası açılamadı!",
     u"Die Datei 'zevatwmv.dll' konnte nicht geöffnet werden!",
     u"Le fichier 'zevatwmv.dll' n'a pu être décompressé!",
     u"¡El archivo 'zevatwmv.dll' no pudo ser descomprimido!"},

    // 82
    {u"File 'SampleProject.zrd' could not be extracted!",
     u"'SampleProject.zrd' dosyası çıkarılamadı!",
     u"Die Datei 'SampleProject.zrd' konnte nicht extrahiert werden!",
     u"Le fichier 'SampleProject.zrd' n'a pu être extrait!",
     u"¡El archivo 'SampleProject.zrd' no pudo ser extraído!"},

    // 83
    {u"File 'SampleProject.zrd' could not be expanded!",
     u"'SampleProject.zrd' dosyası açılamadı!",
     u"Die Datei 'SampleProject.zrd' konnte nicht geöffnet werden!",
     u"Le fichier 'SampleProject.zrd' n'a pu être décompressé!",
     u"¡El archivo 'SampleProject.zrd' no pudo ser descomprimido!"},

    // 84
    {u"File 'vcredist_x86.exe' could not be extracted!",
     u"'vcredist_x86.exe' dosyası çıkarılamadı!",
     u"Die Datei 'vcredist_x86.exe' konnte nicht extrahiert werden!",
     u"Le fichier 'vcredist_x86.exe' n'a pu être extrait!",
     u"¡El archivo 'vcredist_x86.exe' no pudo ser extraído!"},

    // 85
    {u"File 'vcredist_x86.exe' could not be expanded!",
     u"'vcredist_x86.exe' dosyası açılamadı!",
     u"Die Datei 'vcredist_x86.exe' konnte nicht geöffnet werden!",
     u"Le fichier 'vcredist_x86.exe' n'a pu être décompressé!",
     u"¡El archivo 'vcredist_x86.exe' no pudo ser descomprimido!"},

    // 86
    {u"File 'zevmgps.dll' could not be extracted!",
     u"'zevmgps.dll' dosyası çıkarılamadı!",
     u"Die Datei 'zevmgps.dll' konnte nicht extrahiert werden!",
     u"Le fichier 'zevmgps.dll' n'a pu être extrait!",
     u"¡El archivo 'zevmgps.dll' no pudo ser extraído!"},

    // 87
    {u"File 'zevmgps.dll' could not be expanded!",
     u"'zevmgps.dll' dosyası açılamadı!",
     u"Die Datei 'zevmgps.dll' konnte nicht geöffnet werden!",
     u"Le fichier 'zevmgps.dll' n'a pu être décompressé!",
     u"¡El archivo 'zevmgps.dll' no pudo ser descomprimido!"},

    // 88
    {u"File 'zevmgcv.dll' could not be extracted!",
     u"'zevmgcv.dll' dosyası çıkarılamadı!",
     u"Die Datei 'zevmgcv.dll' konnte nicht extrahiert werden!",
     u"Le fichier 'zevmgcv.dll' n'a pu être extrait!",
     u"¡El archivo 'zevmgcv.dll' no pudo ser extraído!"},

    // 89
    {u"File 'zevmgcv.dll' could not be expanded!",
     u"'zevmgcv.dll' dosyası açılamadı!",
     u"Die Datei 'zevmgcv.dll' konnte nicht geöffnet werden!",
     u"Le fichier 'zevmgcv.dll' n'a pu être décompressé!",
     u"¡El archivo 'zevmgcv.dll' no pudo ser descomprimido!"},

    // 90
    {u"File 'zevgvas.dll' could not be extracted!",
     u"'zevgvas.dll' dosyası çıkarılamadı!",
     u"Die Datei 'zevgvas.dll' konnte nicht extrahiert werden!",
     u"Le fichier 'zevgvas.dll' n'a pu être extrait!",
     u"¡El archivo 'zevgvas.dll' no pudo ser extraído!"},

    // 91
    {u"File 'zevgvas.dll' could not be expanded!",
     u"'zevgvas.dll' dosyası açılamadı!",
     u"Die Datei 'zevgvas.dll' konnte nicht geöffnet werden!",
     u"Le fichier 'zevgvas.dll' n'a pu être décompressé!",
     u"¡El archivo 'zevgvas.dll' no pudo ser descomprimido!"},

    // 92
    {u"File 'MCD116m.wav' could not be extracted!",
     u"'MCD116m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'MCD116m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'MCD116m.wav' n'a pu être extrait!",
     u"¡El archivo 'MCD116m.wav' no pudo ser extraído!"},

    // 93
    {u"File 'MCD116m.wav' could not be expanded!",
     u"'MCD116m.wav' dosyası açılamadı!",
     u"Die Datei 'MCD116m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'MCD116m.wav' n'a pu être décompressé!",
     u"¡El archivo 'MCD116m.wav' no pudo ser descomprimido!"},

    // 94
    {u"File 'MCD216m.wav' could not be extracted!",
     u"'MCD216m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'MCD216m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'MCD216m.wav' n'a pu être extrait!",
     u"¡El archivo 'MCD216m.wav' no pudo ser extraído!"},

    // 95
    {u"File 'MCD216m.wav' could not be expanded!",
     u"'MCD216m.wav' dosyası açılamadı!",
     u"Die Datei 'MCD216m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'MCD216m.wav' n'a pu être décompressé!",
     u"¡El archivo 'MCD216m.wav' no pudo ser descomprimido!"},

    // 96
    {u"File 'MCU216m.wav' could not be extracted!",
     u"'MCU216m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'MCU216m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'MCU216m.wav' n'a pu être extrait!",
     u"¡El archivo 'MCU216m.wav' no pudo ser extraído!"},

    // 97
    {u"File 'MCU216m.wav' could not be expanded!",
     u"'MCU216m.wav' dosyası açılamadı!",
     u"Die Datei 'MCU216m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'MCU216m.wav' n'a pu être décompressé!",
     u"¡El archivo 'MCU216m.wav' no pudo ser descomprimido!"},

    // 98
    {u"File 'Key1216m.wav' could not be extracted!",
     u"'Key1216m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key1216m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key1216m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key1216m.wav' no pudo ser extraído!"},

    // 99
    {u"File 'Key1216m.wav' could not be expanded!",
     u"'Key1216m.wav' dosyası açılamadı!",
     u"Die Datei 'Key1216m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key1216m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key1216m.wav' no pudo ser descomprimido!"},

    // 100
    {u"File 'Key218m.wav' could not be extracted!",
     u"'Key218m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key218m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key218m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key218m.wav' no pudo ser extraído!"},

    // 101
    {u"File 'Key218m.wav' could not be expanded!",
     u"'Key218m.wav' dosyası açılamadı!",
     u"Die Datei 'Key218m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key218m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key218m.wav' no pudo ser descomprimido!"},

    // 102
    {u"File 'Key2116m.wav' could not be extracted!",
     u"'Key2116m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key2116m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key2116m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key2116m.wav' no pudo ser extraído!"},

    // 103
    {u"File 'Key2116m.wav' could not be expanded!",
     u"'Key2116m.wav' dosyası açılamadı!",
     u"Die Datei 'Key2116m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key2116m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key2116m.wav' no pudo ser descomprimido!"},

    // 104
    {u"File 'Key228m.wav' could not be extracted!",
     u"'Key228m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key228m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key228m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key228m.wav' no pudo ser extraído!"},

    // 105
    {u"File 'Key228m.wav' could not be expanded!",
     u"'Key228m.wav' dosyası açılamadı!",
     u"Die Datei 'Key228m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key228m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key228m.wav' no pudo ser descomprimido!"},

    // 106
    {u"File 'Key2216m.wav' could not be extracted!",
     u"'Key2216m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key2216m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key2216m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key2216m.wav' no pudo ser extraído!"},

    // 107
    {u"File 'Key2216m.wav' could not be expanded!",
     u"'Key2216m.wav' dosyası açılamadı!",
     u"Die Datei 'Key2216m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key2216m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key2216m.wav' no pudo ser descomprimido!"},

    // 108
    {u"File 'Key318m.wav' could not be extracted!",
     u"'Key318m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key318m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key318m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key318m.wav' no pudo ser extraído!"},

    // 109
    {u"File 'Key318m.wav' could not be expanded!",
     u"'Key318m.wav' dosyası açılamadı!",
     u"Die Datei 'Key318m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key318m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key318m.wav' no pudo ser descomprimido!"},

    // 110
    {u"File 'Key3116m.wav' could not be extracted!",
     u"'Key3116m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key3116m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key3116m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key3116m.wav' no pudo ser extraído!"},

    // 111
    {u"File 'Key3116m.wav' could not be expanded!",
     u"'Key3116m.wav' dosyası açılamadı!",
     u"Die Datei 'Key3116m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key3116m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key3116m.wav' no pudo ser descomprimido!"},

    // 112
    {u"File 'Key328m.wav' could not be extracted!",
     u"'Key328m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key328m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key328m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key328m.wav' no pudo ser extraído!"},

    // 113
    {u"File 'Key328m.wav' could not be expanded!",
     u"'Key328m.wav' dosyası açılamadı!",
     u"Die Datei 'Key328m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key328m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key328m.wav' no pudo ser descomprimido!"},

    // 114
    {u"File 'Key3216m.wav' could not be extracted!",
     u"'Key3216m.wav' dosyası çıkarılamadı!",
     u"Die Datei 'Key3216m.wav' konnte nicht extrahiert werden!",
     u"Le fichier 'Key3216m.wav' n'a pu être extrait!",
     u"¡El archivo 'Key3216m.wav' no pudo ser extraído!"},

    // 115
    {u"File 'Key3216m.wav' could not be expanded!",
     u"'Key3216m.wav' dosyası açılamadı!",
     u"Die Datei 'Key3216m.wav' konnte nicht geöffnet werden!",
     u"Le fichier 'Key3216m.wav' n'a pu être décompressé!",
     u"¡El archivo 'Key3216m.wav' no pudo ser descomprimido!"},

    // 116
    {u"File 'Screen Recorder 6.exe.manifest' could not be extracted!",
     u"'Screen Recorder 6.exe.manifest' dosyası çıkarılamadı!",
     u"Die Datei 'Screen Recorder 6.exe.manifest' konnte nicht extrahiert werden!",
     u"Le fichier 'Screen Recorder 6.exe.manifest' n'a pu être extrait!",
     u"¡El archivo 'Screen Recorder 6.exe.manifest' no pudo ser extraído!"},

    // 117
    {u"File 'Screen Recorder 6.exe.manifest' could not be expanded!",
     u"'Screen Recorder 6.exe.manifest' dosyası açılamadı!",
     u"Die Datei 'Screen Recorder 6.exe.manifest' konnte nicht geöffnet werden!",
     u"Le fichier 'Screen Recorder 6.exe.manifest' n'a pu être décompressé!",
     u"¡El archivo 'Screen Recorder 6.exe.manifest' no pudo ser descomprimido!"},

    // 118
    {u"File 'VideoPlayer.zev' could not be extracted!",
     u"'VideoPlayer.zev' dosyası çıkarılamadı!",
     u"Die Datei 'VideoPlayer.zev' konnte nicht extrahiert werden!",
     u"Le fichier 'VideoPlayer.zev' n'a pu être extrait!",
     u"¡El archivo 'VideoPlayer.zev' no pudo ser extraído!"},

    // 119
    {u"File 'VideoPlayer.zev' could not be expanded!",
     u"'VideoPlayer.zev' dosyası açılamadı!",
     u"Die Datei 'VideoPlayer.zev' konnte nicht geöffnet werden!",
     u"Le fichier 'VideoPlayer.zev' n'a pu être décompressé!",
     u"¡El archivo 'VideoPlayer.zev' no pudo ser descomprimido!"},

    // 120
    {u"File 'VideoPlayer1.zev' could not be extracted!",
     u"'VideoPlayer1.zev' dosyası çıkarılamadı!",
     u"Die Datei 'VideoPlayer1.zev' konnte nicht extrahiert werden!",
     u"Le fichier 'VideoPlayer1.zev' n'a pu être extrait!",
     u"¡El archivo 'VideoPlayer1.zev' no pudo ser extraído!"},

    // 121
    {u"File 'VideoPlayer1.zev' could not be expanded!",
     u"'VideoPlayer1.zev' dosyası açılamadı!",
     u"Die Datei 'VideoPlayer1.zev' konnte nicht geöffnet werden!",
     u"Le fichier 'VideoPlayer1.zev' n'a pu être décompressé!",
     u"¡El archivo 'VideoPlayer1.zev' no pudo ser descomprimido!"},

    // 122
    {u"File 'VideoPlayer2.zev' could not be extracted!",
     u"'VideoPlayer2.zev' dosyası çıkarılamadı!",
     u"Die Datei 'VideoPlayer2.zev' konnte nicht extrahiert werden!",
     u"Le fichier 'VideoPlayer2.zev' n'a pu être extrait!",
     u"¡El archivo 'VideoPlayer2.zev' no pudo ser extraído!"},

    // 123
    {u"File 'VideoPlayer2.zev' could not be expanded!",
     u"'VideoPlayer2.zev' dosyası açılamadı!",
     u"Die Datei 'VideoPlayer2.zev' konnte nicht geöffnet werden!",
     u"Le fichier 'VideoPlayer2.zev' n'a pu être décompressé!",
     u"¡El archivo 'VideoPlayer2.zev' no pudo ser descomprimido!"},

    // 124
    {u"Registry settings are being done...",
     u"Kayıt defteri ayarları yapılıyor...",
     u"Die Einstellungen der Registrierung werden vorgenommen...",
     u"Configuration des paramètres du registre en cours...",
     u"Se están haciendo los ajustes del registro..."},

    // 125
    {u"The following folder couldn't be created : ",
     u"Aşağıdaki dizin oluşturulamadı : ",
     u"Das folgende Verzeichnis konnte nicht erstellt werden : ",
     u"Le répertoire suivant n'a pu être créé : ",
     u"El directorio siguiente no pudo ser creado : "},

    // 126
    {u"Please create manually.",
     u"Lütfen elle oluşturun.",
     u"Bitte erstellen Sie es manuell.",
     u"Veuillez le créer manuellement.",
     u"Por favor créelo manualmente."},

    // 127
    {u"Error: Couldn 't write to the user directory.",
     u"Hata: Kullanıcı dizinine yazılamadı.",
     u"Fehler: In das Benutzerverzeichnis konnte nicht geschrieben werden.",
     u"Erreur: Impossible d'écrire dans le répertoire utilisateur.",
     u"Error: No se pudo escribir en el directorio de usuario."},

    // 128
    {u"'.zrd' file type is associated with another application. Would you like to associate this "
         u"file type with ZEV Reel Desk Project file?",
     u"'.zrd' dosya türü başka bir uygulama ile ilişkilendirilmiş. Bu dosya türünü ZEV Reel Desk "
         u"Proje dosyası ile ilişkilendirmek ister misiniz?",
     u"Der Dateityp '.zrd' ist mit einer anderen Anwendung verknüpft. Möchten Sie diesen "
         u"Dateityp mit der Projektdatei von ZEV Reel Desk verknüpfen?",
     u"Le type de fichier '.zrd' est associé à une autre application. Voulez-vous associer ce "
         u"type de fichier au fichier de Projet ZEV Reel Desk?",
     u"El tipo de archivo '.zrd' está asociado con otra aplicación. ¿Desea asociar este tipo de "
         u"archivo con el archivo de Proyecto de ZEV Reel Desk?"},

    // 129
    {u"couldn't fix AVI registry!",
     u"AVI kayıt defteri düzeltilemedi!",
     u"Die AVI-Registrierung konnte nicht repariert werden!",
     u"Le registre AVI n'a pu être réparé!",
     u"¡No se pudo reparar el registro AVI!"},

    // 130
    {u"ZEV has been sucessfully installed into '",
     u"ZEV '",
     u"ZEV wurde in das Verzeichnis '",
     u"ZEV a été installé dans le répertoire '",
     u"ZEV ha sido instalado en el directorio '"},

    // 131
    {u"' directory.",
     u"' dizinine başarıyla kuruldu.",
     u"' erfolgreich installiert.",
     u"' avec succès.",
     u"' con éxito."},

    // 132
    {u"Now creating shortcuts...",
     u"Şimdi kısayollar oluşturuluyor...",
     u"Jetzt werden die Verknüpfungen erstellt...",
     u"Création des raccourcis en cours...",
     u"Ahora se están creando los accesos directos..."},

    // 133
    {u"Installation of ZEV Screen Recorder has been successfully completed! You can launch ZEV "
         u"from the Start Menu.",
     u"ZEV Ekran Kaydedici'nin kurulumu başarıyla tamamlandı! ZEV'yi Başlat Menüsü'nden "
         u"çalıştırabilirsiniz.",
     u"Die Installation von ZEV Bildschirm Recorder wurde erfolgreich abgeschlossen! Sie können "
         u"ZEV über das Startmenü starten.",
     u"L'installation de l'Enregistreur d'Ecran ZEV est terminée avec succès! Vous pouvez lancer "
         u"ZEV depuis le Menu Démarrer.",
     u"¡La instalación de ZEV Grabador de Pantalla ha sido completada con éxito! Puede ejecutar "
         u"ZEV desde el Menú Inicio."},

    // 134
    {u"couldn't delete the file",
     u"dosya silinemedi",
     u"die Datei konnte nicht gelöscht werden",
     u"impossible de supprimer le fichier",
     u"no se pudo borrar el archivo"},

    // 135
    {u"Installation file is not complete! You should download the whole installation file to "
         u"install ZEV.",
     u"Kurulum dosyası tam değil! ZEV'yi kurmak için kurulum dosyasının tamamını indirmelisiniz.",
     u"Die Installationsdatei ist nicht vollständig! Sie müssen die ganze Installationsdatei "
         u"herunterladen, um ZEV zu installieren.",
     u"Le fichier d'installation n'est pas complet! Vous devez télécharger tout le fichier "
         u"d'installation pour installer ZEV.",
     u"¡El archivo de instalación no está completo! Debe descargar todo el archivo de "
         u"instalación para instalar ZEV."},

    // 136
    {u"Error in Extract File - ",
     u"Dosya Çıkarmada Hata - ",
     u"Fehler beim Extrahieren der Datei - ",
     u"Erreur d'extraction du fichier - ",
     u"Error al extraer el archivo - "},

    // 137
    {u": File '",
     u": Dosya '",
     u": Datei '",
     u": Fichier '",
     u": Archivo '"},

    // 138
    {u"' could not be written!",
     u"' yazılamadı!",
     u"' konnte nicht geschrieben werden!",
     u"' n'a pu être écrit!",
     u"' no pudo ser escrito!"},

    // 139
    {u"Error",
     u"Hata",
     u"Fehler",
     u"Erreur",
     u"Error"},

    // 140
    {u"Will not install Microsoft Visual C++ 2005 Redistributable",
     u"Microsoft Visual C++ 2005 Redistributable kurulmayacak",
     u"Microsoft Visual C++ 2005 Redistributable wird nicht installiert",
     u"Microsoft Visual C++ 2005 Redistributable ne sera pas installé",
     u"Microsoft Visual C++ 2005 Redistributable no será instalado"},

    // 141
    {u"Install",
     u"Kur",
     u"Installiere",
     u"Installer",
     u"Instale"},

    // 142
    {u"Please enter a directory to install ZEV Screen Recorder.",
     u"Lütfen ZEV Ekran Kaydedici'yi kurmak için bir dizin girin.",
     u"Bitte geben Sie ein Verzeichnis ein, um ZEV Bildschirm Recorder zu installieren.",
     u"Veuillez entrer un répertoire pour installer l'Enregistreur d'Ecran ZEV.",
     u"Por favor introduzca un directorio para instalar ZEV Grabador de Pantalla."},

    // 143
    {u"Folder name cannot contain any of the *,?,<, :, /, | characters. The directory name "
         u"you've entered :",
     u"Dizin adı *,?,<, :, /, | karakterlerinden hiçbirini içeremez. Girdiğiniz dizin adı :",
     u"Der Verzeichnisname darf keines der Zeichen *,?,<, :, /, | enthalten. Der von Ihnen "
         u"eingegebene Verzeichnisname :",
     u"Le nom du répertoire ne peut contenir aucun des caractères *,?,<, :, /, |. Le nom de "
         u"répertoire que vous avez entré :",
     u"El nombre del directorio no puede contener ninguno de los caracteres *,?,<, :, /, |. El "
         u"nombre de directorio que ha introducido :"},

    // 144
    {u" couldn't be found!",
     u" bulunamadı!",
     u" konnte nicht gefunden werden!",
     u" n'a pu être trouvé!",
     u" no pudo ser encontrado!"},

    // 145
    {u"Driver",
     u"Sürücü",
     u"Treiber",
     u"Pilote",
     u"Unidad"},

    // 146
    {u"Please check the drive : ",
     u"Lütfen sürücüyü kontrol edin : ",
     u"Bitte überprüfen Sie das Laufwerk : ",
     u"Veuillez vérifier le lecteur : ",
     u"Por favor compruebe la unidad : "},

    // 147
    {u"Screen Recorder can not be installed into a diskette driver.",
     u"Ekran Kaydedici disket sürücüsüne kurulamaz.",
     u"ZEV Bildschirm Recorder kann nicht auf einem Diskettenlaufwerk installiert werden.",
     u"L'Enregistreur d'Ecran ne peut pas être installé sur un lecteur de disquettes.",
     u"El Grabador de Pantalla no puede ser instalado en una unidad de disquete."},

    // 148
    {u"Screen Recorder can not be installed into a network driver.",
     u"Ekran Kaydedici ağ sürücüsüne kurulamaz.",
     u"ZEV Bildschirm Recorder kann nicht auf den Netzwerk Treiber installiert werden.",
     u"L'Enregistreur d'Ecran ne peut pas être installé sur un lecteur réseau.",
     u"El Grabador de Pantalla no puede ser instalado en una unidad de red."},

    // 149
    {u"Screen Recorder can not be installed into a CD driver.",
     u"Ekran Kaydedici CD sürücüsüne kurulamaz.",
     u"ZEV Bildschirm Recorder kann nicht auf einem CD-Laufwerk installiert werden.",
     u"L'Enregistreur d'Ecran ne peut pas être installé sur un lecteur de CD.",
     u"El Grabador de Pantalla no puede ser instalado en una unidad de CD."},

    // 150
    {u"Screen Recorder can not be installed into a RAM driver.",
     u"Ekran Kaydedici RAM sürücüsüne kurulamaz.",
     u"ZEV Bildschirm Recorder kann nicht auf einem RAM-Laufwerk installiert werden.",
     u"L'Enregistreur d'Ecran ne peut pas être installé sur un disque RAM.",
     u"El Grabador de Pantalla no puede ser instalado en una unidad de RAM."},

    // 151
    {u"A version of ZEV Screen Recorder 6 is already installed on your computer and now you are "
         u"installing again to another directory. It is recommended to install into the same "
         u"directory with the installed version or uninstall it before installing this one.",
     u"Bilgisayarınızda ZEV Ekran Kaydedici 6'nın bir sürümü zaten kurulu ve şimdi başka bir "
         u"dizine tekrar kuruyorsunuz. Kurulu olan sürümle aynı dizine kurmanız veya bunu "
         u"kurmadan önce onu kaldırmanız önerilir.",
     u"Eine Version von ZEV Bildschirm Recorder 6 ist bereits auf Ihrem Computer installiert, "
         u"und Sie installieren jetzt noch einmal in ein anderes Verzeichnis. Es wird empfohlen, "
         u"in dasselbe Verzeichnis wie die installierte Version zu installieren oder diese "
         u"vorher zu deinstallieren.",
     u"Une version de l'Enregistreur d'Ecran ZEV 6 est déjà installée sur votre ordinateur et "
         u"vous installez maintenant de nouveau dans un autre répertoire. Il est recommandé "
         u"d'installer dans le même répertoire que la version installée ou de la désinstaller "
         u"avant d'installer celle-ci.",
     u"Una versión de ZEV Grabador de Pantalla 6 ya está instalada en su ordenador y ahora está "
         u"instalando otra vez en otro directorio. Se recomienda instalar en el mismo directorio "
         u"que la versión instalada o desinstalarla antes de instalar ésta."},

    // 152
    {u"Are you sure to install into this directory?",
     u"Bu dizine kurmak istediğinizden emin misiniz?",
     u"Sind Sie sicher, dass Sie in dieses Verzeichnis installieren möchten?",
     u"Êtes-vous sûr de vouloir installer dans ce répertoire?",
     u"¿Está seguro de querer instalar en este directorio?"},

    // 153
    {u" could not be found!",
     u" bulunamadı!",
     u" konnte nicht gefunden werden!",
     u" n'a pu être trouvé!",
     u" no pudo ser encontrado!"},

    // 154
    {u"A previous version of ZEV Screen Recorder is installed in this folder. Please select "
         u"another directory to install the new version.",
     u"Bu dizinde ZEV Ekran Kaydedici'nin önceki bir sürümü kurulu. Yeni sürümü kurmak için "
         u"lütfen başka bir dizin seçin.",
     u"In diesem Verzeichnis ist eine frühere Version von ZEV Bildschirm Recorder installiert. "
         u"Bitte wählen Sie ein anderes Verzeichnis, um die neue Version zu installieren.",
     u"Une version précédente de l'Enregistreur d'Ecran ZEV est installée dans ce répertoire. "
         u"Veuillez choisir un autre répertoire pour installer la nouvelle version.",
     u"Una versión anterior de ZEV Grabador de Pantalla está instalada en este directorio. Por "
         u"favor seleccione otro directorio para instalar la nueva versión."},

    // 155
    {u"A previous version of ZEV Screen Recorder is installed in this folder.",
     u"Bu dizinde ZEV Ekran Kaydedici'nin önceki bir sürümü kurulu.",
     u"In diesem Verzeichnis ist eine frühere Version von ZEV Bildschirm Recorder installiert.",
     u"Une version précédente de l'Enregistreur d'Ecran ZEV est installée dans ce répertoire.",
     u"Una versión anterior de ZEV Grabador de Pantalla está instalada en este directorio."},

    // 156
    {u"Please first uninstall the previous version or select another directory to install the "
         u"new version.",
     u"Lütfen önce eski sürümü kaldırın veya yeni sürümü kurmak için başka bir dizin seçin.",
     u"Bitte deinstallieren Sie zuerst die frühere Version oder wählen Sie ein anderes "
         u"Verzeichnis, um die neue Version zu installieren.",
     u"Veuillez d'abord désinstaller la version précédente ou choisir un autre répertoire pour "
         u"installer la nouvelle version.",
     u"Por favor desinstale primero la versión anterior o seleccione otro directorio para "
         u"instalar la nueva versión."},

    // 157
    {u"Would you like to uninstall the previous version now?",
     u"Eski sürümü şimdi kaldırmak ister misiniz?",
     u"Möchten Sie die frühere Version jetzt deinstallieren?",
     u"Voulez-vous désinstaller la version précédente maintenant?",
     u"¿Desea desinstalar la versión anterior ahora?"},

    // 158
    {u"Error: Could not create directory : ",
     u"Hata: Dizin oluşturulamadı : ",
     u"Fehler: Das Verzeichnis konnte nicht erstellt werden : ",
     u"Erreur: Le répertoire n'a pu être créé : ",
     u"Error: No se pudo crear el directorio : "},

    // 159
    {u"Error: Directory name is not accepted. Please check the directory name entered : ",
     u"Hata: Dizin adı kabul edilmedi. Lütfen girilen dizin adını kontrol edin : ",
     u"Fehler: Der Verzeichnisname wird nicht akzeptiert. Bitte überprüfen Sie den eingegebenen "
         u"Verzeichnisnamen : ",
     u"Erreur: Le nom du répertoire n'est pas accepté. Veuillez vérifier le nom de répertoire "
         u"entré : ",
     u"Error: El nombre del directorio no se acepta. Por favor compruebe el nombre de directorio "
         u"introducido : "},

    // 160
    {u"Error in old version check!",
     u"Eski sürüm kontrolünde hata!",
     u"Fehler bei der Prüfung der alten Version!",
     u"Erreur lors de la vérification de l'ancienne version!",
     u"¡Error en la comprobación de la versión antigua!"},

    // 161
    {u"File '",
     u"Dosya '",
     u"Die Datei '",
     u"Le fichier '",
     u"El archivo '"},

    // 162
    {u"' could not be deleted! It can be in use!",
     u"' silinemedi! Kullanımda olabilir!",
     u"' konnte nicht gelöscht werden! Sie ist möglicherweise in Gebrauch!",
     u"' n'a pu être supprimé! Il est peut-être en cours d'utilisation!",
     u"' no pudo ser borrado! ¡Puede estar en uso!"},

    // 163
    {u"Later you may delete this file manually, installation of Screen Recorder is now "
         u"continuing...",
     u"Bu dosyayı daha sonra elle silebilirsiniz, Ekran Kaydedici'nin kurulumu şimdi devam "
         u"ediyor...",
     u"Sie können diese Datei später manuell löschen, die Installation von Bildschirm Recorder "
         u"wird jetzt fortgesetzt...",
     u"Vous pourrez supprimer ce fichier manuellement plus tard, l'installation de "
         u"l'Enregistreur d'Ecran continue maintenant...",
     u"Más tarde puede borrar este archivo manualmente, la instalación del Grabador de Pantalla "
         u"continúa ahora..."},

    // 164
    {u"Error in ExpandFile: Couldn't decompress the file! ",
     u"ExpandFile içinde hata: Dosya açılamadı! ",
     u"Fehler in ExpandFile: Die Datei konnte nicht dekomprimiert werden! ",
     u"Erreur dans ExpandFile: Le fichier n'a pu être décompressé! ",
     u"Error en ExpandFile: ¡No se pudo descomprimir el archivo! "},

    // 165
    {u"Please email this error message to support@tavorns.example",
     u"Lütfen bu hata mesajını bu adrese gönderin: support@tavorns.example",
     u"Bitte senden Sie diese Fehlermeldung per E-Mail an support@tavorns.example",
     u"Veuillez envoyer ce message d'erreur par e-mail à support@tavorns.example",
     u"Por favor envíe este mensaje de error por correo electrónico a support@tavorns.example"},

    // 166
    {u"Enter a name for new folder :",
     u"Yeni dizin için bir ad girin :",
     u"Geben Sie einen Namen für das neue Verzeichnis ein :",
     u"Entrez un nom pour le nouveau répertoire :",
     u"Introduzca un nombre para el directorio nuevo :"},

    // 167
    {u"New Folder",
     u"Yeni Dizin",
     u"Neues Verzeichnis",
     u"Nouveau Répertoire",
     u"Directorio Nuevo"},

    // 168
    {u"Characters, like '\\*?,:' are invalid.",
     u"'\\*?,:' gibi karakterler geçersizdir.",
     u"Charaktere wie '\\*?,:' sind ungültig.",
     u"Les caracteres comme '\\*?,:' sont invalides.",
     u"Los carácteres como '\\*?,:' son invalidos."},

    // 169
    {u"Invalid Characters",
     u"Geçersiz Karakterler",
     u"Ungültige Zeichen",
     u"Caractères Invalides",
     u"Caracteres Inválidos"},

    // 170
    {u"Space in drive is less than 5.000.000 bytes.",
     u"Sürücüdeki boşluk 5,000,000 bayttan az.",
     u"Leerplatz auf dem Treiber ist weniger als 5.000.000 bytes.",
     u"L'espace dans le pilote est moins de 5.000.000 bytes.",
     u"Espacio en ordenador es menos de 5,000,000 octetos."},

    // 171
    {u"You need more space to install Screen Recorder.",
     u"Ekran Kaydedici'yi kurmak için daha fazla boşluğa ihtiyacınız var.",
     u"Sie brauchen mehr Speicherplatz, um Bildschirm Recorder zu installieren.",
     u"Vous avez besoin de plus d'espace pour installer l'Enregistreur d'Ecran.",
     u"Necesita más espacio para instalar el Grabador de Pantalla."},

    // 172
    {u"Warning",
     u"Uyarı",
     u"Warnung",
     u"Attention",
     u"Advertencia"},

    // 173
    {u"Copying files into temporary folder and expanding into install directory...",
     u"Dosyalar geçici dizine kopyalanıyor ve kurulum dizinine açılıyor...",
     u"Die Dateien werden in das temporäre Verzeichnis kopiert und in das "
         u"Installationsverzeichnis entpackt...",
     u"Copie des fichiers dans le répertoire temporaire et décompression dans le répertoire "
         u"d'installation...",
     u"Copiando los archivos al directorio temporal y descomprimiéndolos en el directorio de "
         u"instalación..."},

    // 174
    {u"'.zrd' file type registry...",
     u"'.zrd' dosya türü kaydı...",
     u"Registrierung des Dateityps '.zrd'...",
     u"Enregistrement du type de fichier '.zrd'...",
     u"Registro del tipo de archivo '.zrd'..."},

    // 175
    {u"Temporary files are being deleted...",
     u"Geçici dosyalar siliniyor...",
     u"Die temporären Dateien werden gelöscht...",
     u"Les fichiers temporaires sont en train d'être supprimés...",
     u"Se están borrando los archivos temporales..."},

    // 176
    {u"Select a destination for Screen Recorder",
     u"Ekran Kaydedici için bir hedef seçin",
     u"Wählen Sie ein Ziel für den Bildschirm Recorder",
     u"Choisissez une destination pour l'Enregistreur d'Ecran",
     u"Seleccione un destino para el Grabador de Pantalla"},

    // 177
    {u"&New Folder",
     u"&Yeni Dizin",
     u"&Neues Verzeichnis",
     u"&Nouveau Répertoire",
     u"Directorio &Nuevo"},

    // 178
    {u"&Ok",
     u"&Tamam",
     u"&Ok",
     u"&Ok",
     u"&Ok"},

    // 179
    {u"Free Space",
     u"Boşluk",
     u"Leerplatz",
     u"Espace Libre",
     u"Espacio libre"},

    // 180: never found, row 148 has the same key
    {u"Screen Recorder can not be installed into a network driver.",
     u"Ekran Kaydedici ağ sürücüsüne kurulamaz.",
     u"Bildschirm Recorder kann nicht in ein Netzwerk Treiber installiert werden",
     u"L'Enregistreur d'Ecran ne peut pas être installé sur un lecteur réseau.",
     u"El Grabador de Pantalla no puede ser instalado en una unidad de red."},

    // 181: never found, row 5 has the same key
    {u"Cancel",
     u"İptal",
     u"Abrechen",
     u"Annuler",
     u"Cancelar"},

    // 182
    {u"Version 4 of ZEV Screen Recorder is installed in this folder. Please select another "
         u"directory to install the new version.",
     u"Bu dizinde ZEV Ekran Kaydedici'nin 4. sürümü kurulu. Yeni sürümü kurmak için lütfen başka "
         u"bir dizin seçin.",
     u"In diesem Verzeichnis ist die Version 4 von ZEV Bildschirm Recorder installiert. Bitte "
         u"wählen Sie ein anderes Verzeichnis, um die neue Version zu installieren.",
     u"La version 4 de l'Enregistreur d'Ecran ZEV est installée dans ce répertoire. Veuillez "
         u"choisir un autre répertoire pour installer la nouvelle version.",
     u"La versión 4 de ZEV Grabador de Pantalla está instalada en este directorio. Por favor "
         u"seleccione otro directorio para instalar la nueva versión."},

    // 183
    {u"The following folder is hidden and couldn't change its attribute to visible. You should "
         u"do it manually.",
     u"Aşağıdaki dizin gizli ve özelliği görünür olarak değiştirilemedi. Bunu elle yapmalısınız.",
     u"Das folgende Verzeichnis ist versteckt und sein Attribut konnte nicht auf sichtbar "
         u"geändert werden. Sie sollten es manuell tun.",
     u"Le répertoire suivant est caché et son attribut n'a pu être changé en visible. Vous devez "
         u"le faire manuellement.",
     u"El directorio siguiente está oculto y no se pudo cambiar su atributo a visible. Debe "
         u"hacerlo manualmente."},

    // 184
    {u"The following folder is readonly and couldn't change its attribute. You should do it "
         u"manually.",
     u"Aşağıdaki dizin salt okunur ve özelliği değiştirilemedi. Bunu elle yapmalısınız.",
     u"Das folgende Verzeichnis ist schreibgeschützt und sein Attribut konnte nicht geändert "
         u"werden. Sie sollten es manuell tun.",
     u"Le répertoire suivant est en lecture seule et son attribut n'a pu être changé. Vous devez "
         u"le faire manuellement.",
     u"El directorio siguiente es de sólo lectura y no se pudo cambiar su atributo. Debe hacerlo "
         u"manualmente."},

    // 185
    {u"File 'ZEVDELang.dat' could not be extracted!",
     u"'ZEVDELang.dat' dosyası çıkarılamadı!",
     u"Die Datei 'ZEVDELang.dat' konnte nicht extrahiert werden!",
     u"Le fichier 'ZEVDELang.dat' n'a pu être extrait!",
     u"¡El archivo 'ZEVDELang.dat' no pudo ser extraído!"},

    // 186
    {u"File 'ZEVDELang.dat' could not be expanded!",
     u"'ZEVDELang.dat' dosyası açılamadı!",
     u"Die Datei 'ZEVDELang.dat' konnte nicht geöffnet werden!",
     u"Le fichier 'ZEVDELang.dat' n'a pu être décompressé!",
     u"¡El archivo 'ZEVDELang.dat' no pudo ser descomprimido!"},

    // 187
    {u"File 'ZEVFRLang.dat' could not be extracted!",
     u"'ZEVFRLang.dat' dosyası çıkarılamadı!",
     u"Die Datei 'ZEVFRLang.dat' konnte nicht extrahiert werden!",
     u"Le fichier 'ZEVFRLang.dat' n'a pu être extrait!",
     u"¡El archivo 'ZEVFRLang.dat' no pudo ser extraído!"},

    // 188
    {u"File 'ZEVFRLang.dat' could not be expanded!",
     u"'ZEVFRLang.dat' dosyası açılamadı!",
     u"Die Datei 'ZEVFRLang.dat' konnte nicht geöffnet werden!",
     u"Le fichier 'ZEVFRLang.dat' n'a pu être décompressé!",
     u"¡El archivo 'ZEVFRLang.dat' no pudo ser descomprimido!"},

    // 189
    {u"File 'ZEVSPLang.dat' could not be extracted!",
     u"'ZEVSPLang.dat' dosyası çıkarılamadı!",
     u"Die Datei 'ZEVSPLang.dat' konnte nicht extrahiert werden!",
     u"Le fichier 'ZEVSPLang.dat' n'a pu être extrait!",
     u"¡El archivo 'ZEVSPLang.dat' no pudo ser extraído!"},

    // 190
    {u"File 'ZEVSPLang.dat' could not be expanded!",
     u"'ZEVSPLang.dat' dosyası açılamadı!",
     u"Die Datei 'ZEVSPLang.dat' konnte nicht geöffnet werden!",
     u"Le fichier 'ZEVSPLang.dat' n'a pu être décompressé!",
     u"¡El archivo 'ZEVSPLang.dat' no pudo ser descomprimido!"},

    // 191
    {u"Registering user : ",
     u"Kullanıcı kaydediliyor : ",
     u"Benutzer wird registriert : ",
     u"Enregistrement de l'utilisateur : ",
     u"Registrando al usuario : "},
};
// clang-format on

static_assert(std::size(phrases) == phrase_row::count);

/// A comma forgotten between two columns joins them and leaves the last one empty.
constexpr bool hasAllColumns(const PhraseRow& row) { return !row.Spanish.empty(); }
static_assert(std::count_if(std::begin(phrases), std::end(phrases), hasAllColumns) ==
              phrase_row::count - 1);
static_assert(!hasAllColumns(phrases[phrase_row::agreement - 1]));

constexpr bool endsWith(const PhraseRow& row, TextView address) {
  return row.English.ends_with(address) && row.Turkish.ends_with(address) &&
         row.German.ends_with(address) && row.French.ends_with(address) &&
         row.Spanish.ends_with(address);
}
static_assert(phrases[27 - 1].English == downloadRequestPhrase);
static_assert(endsWith(phrases[27 - 1], downloadAddress));
static_assert(phrases[165 - 1].English == mailRequestPhrase);
static_assert(endsWith(phrases[165 - 1], supportAddress));

TextView column(const PhraseRow& row, std::int32_t languageNumber) {
  switch (languageNumber) {
    case 1:
      return row.Turkish;
    case 2:
      return row.German;
    case 3:
      return row.French;
    case 4:
      return row.Spanish;
    default:
      return {};
  }
}

/// The numbers that have no language, and yet the same word for every phrase.
bool hasOnlyTheLanguageWord(std::int32_t languageNumber) {
  return languageNumber >= 5 && languageNumber <= 7;
}

}  // namespace

Text phraseKey(std::size_t row) {
  if (row == phrase_row::agreement) return agreementText(0);
  return Text(phrases[row - 1].English);
}

Text phraseTranslation(std::size_t row, std::int32_t languageNumber) {
  if (languageNumber == 0) return {};
  if (hasOnlyTheLanguageWord(languageNumber)) {
    return Text(phrases[phrase_row::languageWord - 1].Turkish);
  }
  if (row == phrase_row::agreement) return agreementText(languageNumber);
  return Text(column(phrases[row - 1], languageNumber));
}

}  // namespace zev
