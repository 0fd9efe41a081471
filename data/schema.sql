-- The tables of the Quillmeal database, as the delivered file is built.
-- Text widths are enforced as the original engine did; keys are the logical keys the statements
-- address; there are no foreign keys and no cascades: the program runs those itself.
-- The loader adds the column rules of the engine to every table (see withColumnRules): text
-- compares without case, SMALLINT and INT columns keep to 16 and 32 bits.

CREATE TABLE PKeys (
  keyId TEXT NOT NULL PRIMARY KEY CHECK (length(keyId) <= 64),
  keyValue INTEGER
);

CREATE TABLE BioVals (
  bioValueId TEXT NOT NULL PRIMARY KEY CHECK (length(bioValueId) <= 32),
  bioValueDesc TEXT
);

CREATE TABLE Units (
  unitId INT NOT NULL PRIMARY KEY,
  unitName TEXT NOT NULL CHECK (length(unitName) <= 64),
  unitAbbrev TEXT NOT NULL CHECK (length(unitAbbrev) <= 12),
  unitAbbrevSmall TEXT NOT NULL CHECK (length(unitAbbrevSmall) <= 2),
  unitDesc TEXT,
  unitType SMALLINT,
  unitConv FLOAT
);

CREATE TABLE ITypes (
  ingredTypeId INT NOT NULL PRIMARY KEY,
  ingredTypeName TEXT CHECK (length(ingredTypeName) <= 64),
  ingredTypeDesc TEXT,
  parentId INTEGER DEFAULT 0,
  isNodeExpanded BOOLEAN DEFAULT 0
);

CREATE TABLE Ingreds (
  ingredId INT NOT NULL PRIMARY KEY,
  ingredTypeId INTEGER,
  ingredName TEXT NOT NULL CHECK (length(ingredName) <= 128),
  ingredDesc BLOB,
  nutCal FLOAT, nutTotalFat FLOAT, nutCholesterol FLOAT, nutTotalCarbo FLOAT, nutDietaryFiber FLOAT,
  nutProtein FLOAT, nutVitaminA FLOAT, nutVitaminB6 FLOAT, nutVitaminB12 FLOAT, nutVitaminC FLOAT,
  nutVitaminD FLOAT, nutVitaminE FLOAT, nutSodium FLOAT, nutMagnesium FLOAT, nutIron FLOAT,
  nutPotassium FLOAT, nutCalcium FLOAT,
  unitId INTEGER NOT NULL,
  ingredPrice FLOAT
);
CREATE INDEX IngredsByType ON Ingreds (ingredTypeId);
CREATE INDEX IngredsByUnit ON Ingreds (unitId);

CREATE TABLE Convs (
  unitId INTEGER NOT NULL,
  ingredId INTEGER NOT NULL,
  grams FLOAT,
  PRIMARY KEY (unitId, ingredId)
);
CREATE INDEX ConvsByIngred ON Convs (ingredId);

CREATE TABLE RGroups (
  recGroupId INT NOT NULL PRIMARY KEY,
  recGroupName TEXT CHECK (length(recGroupName) <= 64),
  recGroupDesc TEXT,
  parentId INTEGER DEFAULT 0,
  isNodeExpanded BOOLEAN DEFAULT 0
);

CREATE TABLE Recipes (
  recId INT NOT NULL PRIMARY KEY,
  recGroupId INTEGER,
  recName TEXT NOT NULL CHECK (length(recName) <= 128),
  recDesc TEXT,
  recPrep BLOB,
  recTime SMALLINT,
  recServings SMALLINT,
  recFreeForm BOOLEAN NOT NULL DEFAULT 0,
  recIngreds TEXT,
  nutCal FLOAT, nutTotalFat FLOAT, nutCholesterol FLOAT, nutTotalCarbo FLOAT, nutDietaryFiber FLOAT,
  nutProtein FLOAT, nutVitaminA FLOAT, nutVitaminB6 FLOAT, nutVitaminB12 FLOAT, nutVitaminC FLOAT,
  nutVitaminD FLOAT, nutVitaminE FLOAT, nutSodium FLOAT, nutMagnesium FLOAT, nutIron FLOAT,
  nutPotassium FLOAT, nutCalcium FLOAT,
  recPrice INTEGER
);
CREATE INDEX RecipesByGroup ON Recipes (recGroupId);

CREATE TABLE Contents (
  recId INTEGER NOT NULL,
  ingredId INTEGER NOT NULL,
  amount FLOAT,
  unitId INTEGER,
  PRIMARY KEY (recId, ingredId)
);
CREATE INDEX ContentsByIngred ON Contents (ingredId);
CREATE INDEX ContentsByUnit ON Contents (unitId);

CREATE TABLE Categories (
  catId INT NOT NULL PRIMARY KEY,
  catName TEXT NOT NULL CHECK (length(catName) <= 128)
);

CREATE TABLE RecCat (
  recId INTEGER NOT NULL,
  catId INTEGER NOT NULL,
  PRIMARY KEY (recId, catId)
);
CREATE INDEX RecCatByCat ON RecCat (catId);

CREATE TABLE MGroups (
  menuGroupId INT NOT NULL PRIMARY KEY,
  menuGroupName TEXT CHECK (length(menuGroupName) <= 64),
  menuGroupDesc TEXT,
  parentId INTEGER DEFAULT 0,
  isNodeExpanded BOOLEAN DEFAULT 0
);

CREATE TABLE Menus (
  menuId INT NOT NULL PRIMARY KEY,
  menuName TEXT NOT NULL CHECK (length(menuName) <= 64),
  menuDesc TEXT,
  menuGroupId INTEGER
);
CREATE INDEX MenusByGroup ON Menus (menuGroupId);

CREATE TABLE RecMen (
  menuId INTEGER NOT NULL,
  recId INTEGER NOT NULL,
  servings SMALLINT,
  PRIMARY KEY (menuId, recId)
);
CREATE INDEX RecMenByRecipe ON RecMen (recId);

CREATE TABLE RecDate (
  recId INTEGER NOT NULL,
  dateScheduled DATETIME NOT NULL,
  servings SMALLINT,
  PRIMARY KEY (recId, dateScheduled)
);
CREATE INDEX RecDateByDate ON RecDate (dateScheduled);

CREATE TABLE Diets (
  dietId INT NOT NULL PRIMARY KEY,
  dietName TEXT CHECK (length(dietName) <= 128),
  dietDescription TEXT,
  dietDuration INTEGER
);

CREATE TABLE DietDays (
  dietId INTEGER NOT NULL,
  dietDayId DATETIME NOT NULL,
  dietDayDescription TEXT,
  PRIMARY KEY (dietId, dietDayId)
);

CREATE TABLE DietContents (
  dietId INTEGER NOT NULL,
  dietTime DATETIME NOT NULL,
  recId INTEGER,
  servings SMALLINT,
  dietItemDescription TEXT,
  PRIMARY KEY (dietId, dietTime)
);
CREATE INDEX DietContentsByRecipe ON DietContents (recId);

CREATE TABLE PUsers (
  userId INT NOT NULL PRIMARY KEY,
  userFirstName TEXT NOT NULL CHECK (length(userFirstName) <= 32),
  userLastName TEXT NOT NULL CHECK (length(userLastName) <= 32),
  userSex SMALLINT,
  userPassword TEXT CHECK (length(userPassword) <= 32),
  userBirthDate DATETIME,
  userHeight FLOAT
);

CREATE TABLE PUMeasures (
  userId INTEGER NOT NULL,
  dateMeasured DATETIME NOT NULL,
  userWeight FLOAT, userChest FLOAT, userAbdomen FLOAT, userTriceps FLOAT, userSuprailiac FLOAT,
  userThigh FLOAT, userWaist FLOAT, userHips FLOAT,
  userNote TEXT,
  PRIMARY KEY (userId, dateMeasured)
);

CREATE TABLE UserMeals (
  userId INTEGER NOT NULL,
  mealTime DATETIME NOT NULL,
  recId INTEGER,
  servings SMALLINT,
  mealDescription TEXT,
  PRIMARY KEY (userId, mealTime)
);
CREATE INDEX UserMealsByRecipe ON UserMeals (recId);

CREATE TABLE CTGroups (
  cookingTipGroupId INT NOT NULL PRIMARY KEY,
  cookingTipGroupName TEXT CHECK (length(cookingTipGroupName) <= 32),
  cookingTipGroupDesc TEXT,
  parentId INTEGER DEFAULT 0,
  isNodeExpanded BOOLEAN DEFAULT 0
);

CREATE TABLE CookingTips (
  cookingTipId INT NOT NULL PRIMARY KEY,
  cookingTipName TEXT CHECK (length(cookingTipName) <= 128),
  cookingTipDesc TEXT,
  cookingTipGroupId INTEGER
);

CREATE TABLE CTVideos (
  fileName TEXT NOT NULL CHECK (length(fileName) <= 32),
  cookingTipId INTEGER NOT NULL,
  PRIMARY KEY (fileName, cookingTipId)
);

-- No unique key on the position: moving and renumbering pass through transient states.
CREATE TABLE Shortcuts (
  shortcutId INTEGER NOT NULL,
  shortcutName TEXT CHECK (length(shortcutName) <= 128),
  shortcutType INTEGER,
  shortcutDefinition TEXT
);
CREATE INDEX ShortcutsById ON Shortcuts (shortcutId);
